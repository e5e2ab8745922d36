"""A person at a private desktop with real programs: pages from this machine, browsers, terminals, and hands."""

import html
import http.server
import json
import os
import queue
import shutil
import subprocess
import threading
import time
import wave

from kestrio_desktop import BIN, DEADLINE
from witness import PRIVATE_TITLE, Front, Witness

EXTENSION = BIN.parent / "extension"


class Page:
    """A page of the site. `title` is what it calls itself, `recorded` how that should be recorded."""

    def __init__(self, site, name, title, *, recorded=None, body="", host="127.0.0.1"):
        self.site, self.name, self.title, self.body = site, name, title, body
        self.recorded = title if recorded is None else recorded
        # No address is the beginning of another, or the address bar would complete the one to the other.
        self.address = f"http://{host}:{site.port}/{name}/"
        self.orders = queue.Queue()
        self.done = queue.Queue()

    def tell(self, order):
        """Has the page run a line of script, wherever it is; returns what that answered."""
        self.orders.put(order)
        return json.loads(self.done.get(timeout=DEADLINE))

    def html(self):
        return f"<!doctype html><html><meta charset=utf-8><title>{html.escape(self.title)}</title>{self.body}</html>"


# A page that is told what to do, also in the background, where timers come late.
TOLD = """
<script>
  new EventSource("orders").onmessage = async (order) => {
    let answer;
    try { answer = await eval(JSON.parse(order.data)); } catch (error) { answer = String(error); }
    await fetch("done", { method: "POST", body: JSON.stringify(answer ?? null) });
  };
</script>
"""

MUSIC = TOLD + '<audio id=media src="/tone.wav" loop autoplay></audio>'

# A picture that changes and a sound, recorded on the spot: no file of another's, and no codec that may be missing.
VIDEO = (
    TOLD
    + """
<style>html, body { margin: 0 } video { width: 100vw; height: 100vh }</style>
<video id=media loop></video>
<script>
  const canvas = document.createElement("canvas");
  [canvas.width, canvas.height] = [320, 180];
  const picture = canvas.getContext("2d");
  const painting = setInterval(() => {
    picture.fillStyle = `hsl(${Date.now() / 20 % 360} 80% 50%)`;
    picture.fillRect(0, 0, canvas.width, canvas.height);
  }, 100);
  const sound = new AudioContext();
  const tone = sound.createOscillator();
  const microphone = sound.createMediaStreamDestination();
  tone.connect(microphone);
  tone.start();
  const tracks = [...canvas.captureStream(10).getTracks(), ...microphone.stream.getTracks()];
  const recorder = new MediaRecorder(new MediaStream(tracks), { mimeType: "video/webm" });
  recorder.ondataavailable = (recording) => {
    clearInterval(painting);
    sound.close();
    media.src = URL.createObjectURL(recording.data);
    media.play();
  };
  recorder.start();
  setTimeout(() => recorder.stop(), 3000);
</script>
"""
)


class Site:
    """Pages served from this machine to nobody else."""

    def __init__(self, folder):
        self.pages = {}  # by name
        self.by_title = {}
        self.tone = folder / "tone.wav"
        self.write_tone()
        site = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def do_GET(self):
                site.answer(self)

            def do_POST(self):
                text = self.rfile.read(int(self.headers["Content-Length"])).decode()
                site.pages[self.path.split("/")[1]].done.put(text)
                site.send(self, 204, "text/plain", b"")

            def log_message(self, *_):
                pass

        class Server(http.server.ThreadingHTTPServer):
            daemon_threads = True

            def handle_error(self, *_):
                pass  # browsers hang up as they like

        self.server = Server(("127.0.0.1", 0), Handler)
        self.port = self.server.server_port
        self.is_over = False
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    def add(self, name, title, **more):
        page = Page(self, name, title, **more)
        self.pages[name] = page
        self.by_title[title] = page
        return page

    def write_tone(self):
        rate, seconds = 8000, 10
        period = b"".join(int(9000 * (1 if n < 10 else -1)).to_bytes(2, "little", signed=True) for n in range(20))
        with wave.open(str(self.tone), "wb") as out:
            out.setnchannels(1), out.setsampwidth(2), out.setframerate(rate)
            out.writeframes(period * (rate * seconds // 20))

    @staticmethod
    def send(request, status, kind, body):
        request.send_response(status)
        request.send_header("Content-Type", kind)
        request.send_header("Content-Length", str(len(body)))
        request.end_headers()
        request.wfile.write(body)

    def answer(self, request):
        _, name, *rest = [*request.path.partition("?")[0].split("/"), ""]
        if name == "tone.wav":
            return self.send(request, 200, "audio/wav", self.tone.read_bytes())
        page = self.pages.get(name)
        if not page:
            return self.send(request, 404, "text/plain", b"")
        if rest[0] == "orders":
            return self.hand_out(page, request)
        return self.send(request, 200, "text/html; charset=utf-8", page.html().encode())

    def hand_out(self, page, request):
        request.send_response(200)
        request.send_header("Content-Type", "text/event-stream")
        request.end_headers()
        while not self.is_over:
            try:
                order = page.orders.get(timeout=0.2)
            except queue.Empty:
                continue
            request.wfile.write(f"data: {json.dumps(order)}\n\n".encode())
            request.wfile.flush()

    def close(self):
        self.is_over = True
        self.server.shutdown()
        self.server.server_close()


class Browser:
    """One browser with a profile of its own, that tells of itself by the given sources: "bridge", "accessibility", or
    neither, which leaves the titles of its windows."""

    def __init__(self, home, folder, sources):
        self.folder, self.sources = folder, sources
        folder.mkdir(parents=True)
        self.environment = (
            home.environment
            | {"HOME": str(folder), "XDG_CONFIG_HOME": str(folder / "config"), "LC_ALL": "C.UTF-8"}
            | (self.ACCESSIBLE if "accessibility" in sources else {})
        )
        self.prepare()
        if "bridge" in sources:
            command = [BIN / "kestrioctl", "browsers", "--install"]
            subprocess.run(command, env=self.environment, check=True, capture_output=True, timeout=DEADLINE)

    @classmethod
    def is_installed(cls):
        return shutil.which(cls.PROGRAM) is not None

    def open(self, *arguments):
        return subprocess.Popen(
            [*self.command(), *arguments],
            env=self.environment,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
            start_new_session=True,
        )

    def page_title(self, name):
        """What the page calls itself, of the name of its window."""
        for signature in self.SIGNATURES:
            if name.endswith(signature):
                return name.removesuffix(signature)
        return None


class Chromium(Browser):
    ID = "org.chromium.Chromium"
    PROGRAM = "chromium"
    ACCESSIBLE = {"ACCESSIBILITY_ENABLED": "1"}
    PRIVATELY = "--incognito"
    SIGNATURES = (" - Chromium",)

    def prepare(self):
        pass

    def command(self):
        sandbox = ["--no-sandbox"] if os.getuid() == 0 else []
        off = ["HttpsUpgrades", "HttpsFirstBalancedModeAutoEnable"]
        extension = []
        if "bridge" in self.sources:
            off.append("DisableLoadExtensionCommandLineSwitch")
            extension = [f"--load-extension={EXTENSION}/chromium"]
        return [
            self.PROGRAM, *sandbox, *extension, "--no-first-run", "--no-default-browser-check", "--disable-gpu",
            "--disable-component-update", "--disable-background-networking", "--password-store=basic",
            f"--disable-features={','.join(off)}", "--autoplay-policy=no-user-gesture-required",
            "--host-resolver-rules=MAP * 127.0.0.1", "--disable-session-crashed-bubble",
        ]


class Firefox(Browser):
    ID = "org.mozilla.firefox"
    PROGRAM = "firefox-esr"
    ACCESSIBLE = {"GNOME_ACCESSIBILITY": "1"}
    PRIVATELY = "--private-window"
    SIGNATURES = (" — Mozilla Firefox Private Browsing", " — Mozilla Firefox")

    SETTINGS = {
        "app.normandy.enabled": False,
        "app.update.enabled": False,
        "browser.aboutwelcome.enabled": False,
        "browser.shell.checkDefaultBrowser": False,
        "browser.startup.homepage_override.mstone": "ignore",
        "browser.startup.page": 0,
        "browser.tabs.warnOnClose": False,
        "browser.warnOnQuit": False,
        "datareporting.policy.dataSubmissionEnabled": False,
        "datareporting.policy.firstRunURL": "",
        "dom.security.https_first": False,
        "extensions.autoDisableScopes": 0,
        "extensions.startupScanScopes": 15,
        "media.autoplay.blocking_policy": 0,
        "media.autoplay.default": 0,
        "network.dns.localDomains": "www.mixcloud.com,vimeo.com",
        "network.proxy.type": 0,
        "termsofuse.bypassNotification": True,
        "toolkit.telemetry.reportingpolicy.firstRun": False,
        "xpinstall.signatures.required": False,
    }

    def prepare(self):
        self.profile = self.folder / "profile"
        extensions = self.profile / "extensions"
        extensions.mkdir(parents=True)
        if "bridge" in self.sources:
            shutil.copy(EXTENSION / "firefox.xpi", extensions / "tabs@kestrio.haldorvinter.dev.xpi")
        lines = [f"user_pref({json.dumps(name)}, {json.dumps(value)});\n" for name, value in self.SETTINGS.items()]
        (self.profile / "user.js").write_text("".join(lines))
        self.environment["MOZ_CRASHREPORTER_DISABLE"] = "1"

    def command(self):
        return [self.PROGRAM, "--profile", str(self.profile)]


BROWSERS = {"chromium": Chromium, "firefox": Firefox}


class Stage:
    """Opens programs, acts on them, and says what each window shows, so that the witness knows the truth."""

    def __init__(self, home, browser, sources):
        self.home = home
        self.folder = home.path.with_name(home.path.name + ".stage")
        self.folder.mkdir()
        self.started = []
        self.site = Site(self.folder)
        self.windows = {}  # what each shows: a function of its name, by window
        self.opening = None  # the same for the window that opens next
        self.last_input = time.time()
        self.witness = Witness(self.meaning)
        self.browser = BROWSERS[browser](home, self.folder / browser, sources)

    def close(self):
        self.witness.close()
        for process in reversed(self.started):
            if process.poll() is None:
                process.kill()
            process.wait()
        self.site.close()
        shutil.rmtree(self.folder, ignore_errors=True)

    # What windows mean.

    def meaning(self, window, name):
        if window not in self.windows and self.opening:
            self.windows[window] = self.opening
        shows = self.windows.get(window)
        return shows(name) if shows else None

    def shows_page(self, name):
        page = self.site.by_title.get(self.browser.page_title(name))
        return Front(self.browser.ID, page.recorded, page.address) if page else None

    def shows_private_page(self, name):
        return Front(self.browser.ID, PRIVATE_TITLE) if self.browser.page_title(name) else None

    @staticmethod
    def shows_text(application, signature=""):
        return lambda name: Front(application, name.removesuffix(signature))

    # Hands.

    def xdotool(self, *arguments):
        answer = subprocess.run(["xdotool", *arguments], capture_output=True, timeout=DEADLINE).stdout
        return answer.decode(errors="replace").strip()

    def act(self, *arguments):
        """Input: somebody is there."""
        self.last_input = time.time()
        return self.xdotool(*arguments)

    def key(self, *keys):
        self.act("key", "--clearmodifiers", *keys)

    def touch(self):
        self.act("mousemove_relative", "--", "-1", "0", "mousemove_relative", "1", "0")

    def spend(self, seconds):
        """Looks at what is in front, and moves the mouse now and then."""
        until = time.monotonic() + seconds
        while (left := until - time.monotonic()) > 0:
            self.touch()
            time.sleep(min(left, 2.0))

    # Windows and pages. Each returns the window that is in front, once the X server says so.

    def sees(self, front, what):
        window = self.witness.expect(lambda _, __, shown: shown == front)
        if window is None:
            raise AssertionError(f"never in front: {what}, but “{self.witness.name}”: {self.witness.front}")
        return window

    def start(self, command, shows, front, *, environment=None):
        self.touch()
        self.opening = shows
        process = subprocess.Popen(
            command, env=(environment or os.environ) | {"LC_ALL": "C.UTF-8"},
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        )
        self.started.append(process)
        window = self.sees(front, front.title)
        self.opening = None
        return window

    def terminal(self, title, application="xterm"):
        """A terminal whose title a program inside sets: each line written to its pipe is one."""
        pipe = self.folder / f"titles-{len(self.started)}"
        os.mkfifo(pipe)
        script = 'while read -r t; do printf "\\033]0;%s\\007" "$t"; done <>"$1"'
        shows = self.shows_text(application)
        window = self.start(["xterm", "-T", title, "-e", "sh", "-c", script, "sh", pipe], shows, shows(title))
        return window, pipe

    def open_browser(self, page, *arguments, private=False):
        """A tab of the window in front, or a new window where the arguments say so."""
        self.touch()
        shows = self.shows_private_page if private else self.shows_page
        self.opening = shows
        self.started.append(self.browser.open(*arguments, page.address))
        window = self.sees_page(page, private=private)
        self.opening = None
        return window

    def open_private(self, page):
        return self.open_browser(page, self.browser.PRIVATELY, private=True)

    def open_window(self, page):
        return self.open_browser(page, "--new-window")

    def sees_page(self, page, private=False):
        def holds(window, name, front):
            is_private = self.windows.get(window) == self.shows_private_page
            return front is not None and is_private == private and self.browser.page_title(name) == page.title

        window = self.witness.expect(holds)
        if window is None:
            raise AssertionError(f"never in front: {page.title}")
        return window

    def go(self, page, private=False):
        self.key("ctrl+l")
        time.sleep(0.3)  # nothing outside the browser tells that its address bar has the focus
        self.act("type", "--delay", "5", page.address)
        self.key("Return")
        return self.sees_page(page, private)

    def bring(self, window):
        self.touch()
        self.xdotool("windowactivate", "--sync", str(window))
        if not self.witness.expect(lambda active, _, front: active == window and front is not None):
            raise AssertionError("a window would not come to the front")
        return window


def stored_bytes(home):
    """Every file of the program's own, with its content."""
    return {path: path.read_bytes() for path in home.path.rglob("*") if path.is_file()}
