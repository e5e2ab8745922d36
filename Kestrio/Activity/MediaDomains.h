// The sites that are worth treating as media when a browser makes sound or keeps the display awake. Any thread.
#pragma once

#include <array>
#include <string_view>

namespace kestrio {

/// Host names as `URLTools::domain` gives them. A video call counts on purpose: its sound belongs to what the person is
/// attending to.
inline constexpr std::array<std::string_view, 33> mediaDomains{
    "music.youtube.com",   // YouTube Music
    "netflix.com",         // Netflix
    "primevideo.com",      // Prime Video
    "disneyplus.com",      // Disney+
    "hotstar.com",         // Hotstar
    "hulu.com",            // Hulu
    "max.com",             // Max
    "twitch.tv",           // Twitch
    "kick.com",            // Kick
    "vimeo.com",           // Vimeo
    "dailymotion.com",     // Dailymotion
    "open.spotify.com",    // Spotify's web player
    "soundcloud.com",      // SoundCloud
    "mixcloud.com",        // Mixcloud
    "podcasts.apple.com",  // Apple Podcasts
    "music.apple.com",     // Apple Music
    "tv.apple.com",        // Apple TV
    "pocketcasts.com",     // Pocket Casts
    "audible.com",         // Audible
    "tidal.com",           // Tidal
    "deezer.com",          // Deezer
    "anghami.com",         // Anghami
    "tamashaweb.com",      // Tamasha
    "zee5.com",            // ZEE5
    "sonyliv.com",         // SonyLIV
    "jiocinema.com",       // JioCinema
    "crunchyroll.com",     // Crunchyroll
    "udemy.com",           // Udemy
    "coursera.org",        // Coursera
    "meet.google.com",     // Google Meet
    "zoom.us",             // Zoom
    "teams.microsoft.com", // Microsoft Teams, at work
    "teams.live.com",      // Microsoft Teams, at home
};

/// Whether the address shows a video of the video site, or belongs to one of the sites or to a part of one.
bool isMediaPage(std::string_view url);

} // namespace kestrio
