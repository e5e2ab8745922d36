#include "Kestrio/Classification/CategoryTables.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace kestrio {
namespace {

constexpr std::string_view developmentApps[] = {
    "com.apple.dt.Xcode",
    "com.microsoft.VSCode",
    "com.microsoft.VSCodeInsiders",
    "com.todesktop.230313mzl4w4u92",
    "com.exafunction.windsurf",
    "com.vscodium",
    "dev.zed.Zed",
    "dev.zed.Zed-Preview",
    "com.sublimetext.4",
    "com.sublimetext.3",
    "com.panic.Nova",
    "com.apple.Terminal",
    "com.googlecode.iterm2",
    "dev.warp.Warp-Stable",
    "com.mitchellh.ghostty",
    "net.kovidgoyal.kitty",
    "io.alacritty",
    "com.github.wez.wezterm",
    "com.github.GitHubClient",
    "com.fournova.Tower3",
    "com.axosoft.gitkraken",
    "com.sublimemerge",
    "com.postmanlabs.mac",
    "com.insomnia.app",
    "com.tinyapp.TablePlus",
    "com.sequel-ace.sequel-ace",
    "com.docker.docker",
    "com.electron.dockerdesktop",
    "com.google.android.studio",
    "com.apple.iphonesimulator",
    "com.apple.Instruments",
    "com.apple.FileMerge",
    "com.proxyman.NSProxy",
    "com.charlesproxy.charles",
    "com.kapeli.dashdoc",
    "org.dbeaver.dbeaver",
    "com.mongodb.compass",
    "com.apple.ScriptEditor2",
    "com.apple.Console",
    "com.utmapp.UTM",
    "com.openai.codex",
};

constexpr std::string_view workApps[] = {
    "com.figma.Desktop",
    "com.bohemiancoding.sketch3",
    "notion.id",
    "md.obsidian",
    "com.apple.Notes",
    "com.apple.reminders",
    "com.apple.iCal",
    "com.apple.iWork.Pages",
    "com.apple.iWork.Numbers",
    "com.apple.iWork.Keynote",
    "com.microsoft.Word",
    "com.microsoft.Excel",
    "com.microsoft.Powerpoint",
    "com.microsoft.onenote.mac",
    "com.linear",
    "com.culturedcode.ThingsMac",
    "com.todoist.mac.Todoist",
    "com.flexibits.fantastical2.mac",
    "com.lukilabs.lukiapp",
    "com.electron.logseq",
    "com.readdle.PDFExpert-Mac",
    "com.canva.CanvaDesktop",
    "com.pixelmatorteam.pixelmator.x",
    "com.seriflabs.affinitydesigner2",
    "com.seriflabs.affinityphoto2",
    "com.apple.FinalCut",
    "com.apple.logic10",
    "com.blackmagic-design.DaVinciResolve",
    "com.clickup.desktop-app",
    "com.apple.freeform",
    "com.loom.desktop",
};

constexpr std::string_view learningApps[] = {
    "com.openai.chat",   "com.anthropic.claudefordesktop", "ai.perplexity.mac",
    "com.apple.iBooksX", "com.apple.Dictionary",           "com.amazon.Kindle",
};

constexpr std::string_view communicationApps[] = {
    "com.tinyspeck.slackmacgap",
    "net.whatsapp.WhatsApp",
    "desktop.WhatsApp",
    "com.apple.MobileSMS",
    "com.apple.mail",
    "com.microsoft.Outlook",
    "com.hnc.Discord",
    "us.zoom.xos",
    "com.microsoft.teams2",
    "com.microsoft.teams",
    "ru.keepcoder.Telegram",
    "org.telegram.desktop",
    "com.apple.FaceTime",
    "com.skype.skype",
    "com.readdle.smartemail-Mac",
    "com.facebook.archon",
    "com.superhuman.electron",
};

constexpr std::string_view entertainmentApps[] = {
    "com.spotify.client",         "com.apple.Music",         "com.apple.TV",
    "com.apple.podcasts",         "org.videolan.vlc",        "com.colliderli.iina",
    "com.apple.QuickTimePlayerX", "com.valvesoftware.steam",
};

constexpr std::string_view developmentDomains[] = {
    "github.com",
    "gist.github.com",
    "docs.github.com",
    "gitlab.com",
    "bitbucket.org",
    "stackoverflow.com",
    "stackexchange.com",
    "superuser.com",
    "serverfault.com",
    "askubuntu.com",
    "developer.apple.com",
    "developer.mozilla.org",
    "developer.android.com",
    "developer.chrome.com",
    "developer.hashicorp.com",
    "npmjs.com",
    "pypi.org",
    "pub.dev",
    "crates.io",
    "pkg.go.dev",
    "docker.com",
    "hub.docker.com",
    "vercel.com",
    "netlify.com",
    "heroku.com",
    "render.com",
    "railway.com",
    "fly.io",
    "supabase.com",
    "firebase.google.com",
    "console.firebase.google.com",
    "cloud.google.com",
    "console.cloud.google.com",
    "aws.amazon.com",
    "console.aws.amazon.com",
    "portal.azure.com",
    "cloudflare.com",
    "dash.cloudflare.com",
    "digitalocean.com",
    "sentry.io",
    "postman.com",
    "codepen.io",
    "codesandbox.io",
    "stackblitz.com",
    "replit.com",
    "jsfiddle.net",
    "regex101.com",
    "swift.org",
    "kotlinlang.org",
    "python.org",
    "nodejs.org",
    "react.dev",
    "reactjs.org",
    "nextjs.org",
    "vuejs.org",
    "angular.dev",
    "svelte.dev",
    "tailwindcss.com",
    "expo.dev",
    "reactnative.dev",
    "flutter.dev",
    "dart.dev",
    "rust-lang.org",
    "go.dev",
    "typescriptlang.org",
    "vite.dev",
    "vitejs.dev",
    "ui.shadcn.com",
    "web.dev",
    "caniuse.com",
    "leetcode.com",
    "hackerrank.com",
    "codeforces.com",
    "localhost",
    "127.0.0.1",
    "0.0.0.0",
    "mongodb.com",
    "neon.tech",
    "planetscale.com",
    "appstoreconnect.apple.com",
    "dashboard.stripe.com",
    "platform.openai.com",
    "console.anthropic.com",
    "docs.anthropic.com",
    "platform.claude.com",
    "kubernetes.io",
};

constexpr std::string_view workDomains[] = {
    "docs.google.com",  "sheets.google.com", "slides.google.com", "drive.google.com",  "calendar.google.com",
    "forms.google.com", "keep.google.com",   "notion.so",         "notion.com",        "figma.com",
    "canva.com",        "miro.com",          "trello.com",        "asana.com",         "linear.app",
    "atlassian.com",    "atlassian.net",     "clickup.com",       "monday.com",        "airtable.com",
    "office.com",       "microsoft365.com",  "sharepoint.com",    "onedrive.live.com", "dropbox.com",
    "box.com",          "basecamp.com",      "clockify.me",       "toggl.com",         "upwork.com",
    "fiverr.com",       "freelancer.com",    "loom.com",          "coda.io",           "dribbble.com",
    "behance.net",      "framer.com",        "webflow.com",       "zapier.com",        "hubspot.com",
    "salesforce.com",   "force.com",         "excalidraw.com",    "whimsical.com",     "lucid.app",
    "overleaf.com",     "grammarly.com",
};

constexpr std::string_view learningDomains[] = {
    "chatgpt.com",
    "chat.openai.com",
    "openai.com",
    "claude.ai",
    "anthropic.com",
    "gemini.google.com",
    "aistudio.google.com",
    "notebooklm.google.com",
    "perplexity.ai",
    "poe.com",
    "copilot.microsoft.com",
    "chat.deepseek.com",
    "grok.com",
    "wikipedia.org",
    "medium.com",
    "dev.to",
    "hashnode.com",
    "hashnode.dev",
    "substack.com",
    "coursera.org",
    "udemy.com",
    "edx.org",
    "khanacademy.org",
    "udacity.com",
    "pluralsight.com",
    "egghead.io",
    "frontendmasters.com",
    "freecodecamp.org",
    "w3schools.com",
    "geeksforgeeks.org",
    "javatpoint.com",
    "tutorialspoint.com",
    "programiz.com",
    "scrimba.com",
    "brilliant.org",
    "duolingo.com",
    "arxiv.org",
    "scholar.google.com",
    "researchgate.net",
    "google.com",
    "bing.com",
    "duckduckgo.com",
    "translate.google.com",
    "huggingface.co",
};

constexpr std::string_view communicationDomains[] = {
    "mail.google.com", "gmail.com",       "outlook.com",  "outlook.live.com",    "outlook.office.com",
    "mail.yahoo.com",  "mail.proton.me",  "proton.me",    "web.whatsapp.com",    "whatsapp.com",
    "slack.com",       "app.slack.com",   "discord.com",  "teams.microsoft.com", "teams.live.com",
    "meet.google.com", "chat.google.com", "zoom.us",      "web.telegram.org",    "telegram.org",
    "messenger.com",   "web.skype.com",   "calendly.com",
};

constexpr std::string_view entertainmentDomains[] = {
    "youtube.com",     "youtu.be",         "music.youtube.com",  "netflix.com",
    "primevideo.com",  "disneyplus.com",   "hotstar.com",        "hulu.com",
    "max.com",         "hbomax.com",       "twitch.tv",          "kick.com",
    "spotify.com",     "open.spotify.com", "soundcloud.com",     "vimeo.com",
    "dailymotion.com", "9gag.com",         "imdb.com",           "crunchyroll.com",
    "tamashaweb.com",  "zee5.com",         "sonyliv.com",        "jiocinema.com",
    "tv.apple.com",    "music.apple.com",  "steamcommunity.com", "store.steampowered.com",
    "epicgames.com",   "chess.com",        "lichess.org",        "espncricinfo.com",
    "cricbuzz.com",    "espn.com",
};

constexpr std::string_view socialDomains[] = {
    "facebook.com",         "instagram.com",   "twitter.com",  "x.com",         "reddit.com",
    "tiktok.com",           "linkedin.com",    "snapchat.com", "pinterest.com", "threads.net",
    "threads.com",          "tumblr.com",      "quora.com",    "bsky.app",      "mastodon.social",
    "news.ycombinator.com", "producthunt.com",
};

struct CategoryRows {
    ActivityCategory category;
    std::span<const std::string_view> names;
};

CategoryTable table(std::initializer_list<CategoryRows> all) {
    CategoryTable table;
    for (const auto& rows : all)
        for (const auto name : rows.names)
            table.emplace(name, rows.category);
    return table;
}

constexpr CategoryPrefix prefixes[] = {
    {"com.jetbrains.", ActivityCategory::development},
    {"com.microsoft.VSCode", ActivityCategory::development},
    {"com.apple.dt.", ActivityCategory::development},
    {"com.adobe.", ActivityCategory::work},
};

} // namespace

const CategoryTable& builtInApps() {
    using enum ActivityCategory;
    static const auto apps = table({{development, developmentApps},
                                    {work, workApps},
                                    {learning, learningApps},
                                    {communication, communicationApps},
                                    {entertainment, entertainmentApps}});
    return apps;
}

const CategoryTable& builtInDomains() {
    using enum ActivityCategory;
    static const auto domains = table({{development, developmentDomains},
                                       {work, workDomains},
                                       {learning, learningDomains},
                                       {communication, communicationDomains},
                                       {entertainment, entertainmentDomains},
                                       {social, socialDomains}});
    return domains;
}

const CategoryPrefix* builtInPrefix(std::string_view bundleID) {
    const auto* found = std::find_if(std::begin(prefixes), std::end(prefixes),
                                     [&](const auto& rule) { return bundleID.starts_with(rule.prefix); });
    return found == std::end(prefixes) ? nullptr : found;
}

} // namespace kestrio
