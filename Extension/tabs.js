// What is told of the browser's windows: pure functions and values, without the browser.

/** Bounds of what is told; the reader refuses what goes beyond its own, which are wider. */
export const limits = { windows: 150, tabs: 2000, url: 2000, title: 1000, message: 900_000 };

/** How long a page may keep the title of the one before it until that is taken for its own. */
export const settleAfter = 1000; // milliseconds

/** How long a page that still loads is kept back for its title; then it is told without one. */
export const holdAtMost = 3000; // milliseconds

/**
 * Knows which title belongs to which address. Browsers change the address of a tab at once and its title when the
 * page says so, later; in between the two do not belong together. Until they do, a tab keeps the pair that it had.
 */
export class Pairs {
  #known = new Map(); // by tab: { url, oldTitle, since, pair }

  /**
   * The address and the title to tell of a tab, as it is at `now`. `again` says after how many milliseconds another
   * look is worth it, though no event may come by then.
   */
  pair(tab, now) {
    const known = this.#known.get(tab.id);
    if (!known || known.url !== tab.url) {
      // Of a tab that was not seen before, only what has loaded is sure to have its own title.
      const isSure = !known && tab.status === "complete";
      this.#known.set(tab.id, {
        url: tab.url,
        oldTitle: isSure ? undefined : (known?.lastTitle ?? tab.title),
        lastTitle: tab.title,
        since: now,
        pair: known?.pair,
      });
      return this.pair(tab, now);
    }
    known.lastTitle = tab.title;
    const age = now - known.since;
    if (this.#belongsTogether(tab, known, age)) {
      known.oldTitle = undefined;
      known.pair = { url: tab.url, title: tab.title };
      return { ...known.pair };
    }
    if (age >= holdAtMost || !known.pair) {
      return { url: tab.url, title: "", again: age < settleAfter ? settleAfter - age : undefined };
    }
    return { ...known.pair, again: (age < settleAfter ? settleAfter : holdAtMost) - age };
  }

  #belongsTogether(tab, known, age) {
    if (known.oldTitle === undefined) return true;
    if (tab.status === "complete") return tab.title !== known.oldTitle || age >= settleAfter;
    return tab.title !== known.oldTitle && !isPlaceholder(tab.title, tab.url);
  }

  /** Forgets the tabs that are not among these. */
  keepOnly(ids) {
    for (const id of this.#known.keys()) if (!ids.has(id)) this.#known.delete(id);
  }
}

/** Whether the title is only the address, as browsers show it until a page has a title. */
export function isPlaceholder(title, url) {
  if (title === "") return true;
  const bare = (text) => text.replace(/^[a-z-]+:\/\//i, "").replace(/^www\./i, "").replace(/\/$/, "");
  return bare(url).startsWith(bare(title));
}

/** At most so many characters, none of them cut in half, and no half ones at all. */
export function cut(text, length) {
  return text.slice(0, length).replace(/[\ud800-\udbff](?![\udc00-\udfff])|(?<![\ud800-\udbff])[\udc00-\udfff]/g, "");
}

function toldTab(tab, pair) {
  return {
    url: cut(pair.url ?? "", limits.url),
    title: cut(pair.title ?? "", limits.title),
    active: tab.active === true,
    audible: tab.audible === true,
    muted: tab.mutedInfo?.muted === true,
  };
}

function toldWindow(window, tabs) {
  return {
    id: window.id,
    type: window.type ?? "normal",
    state: window.state ?? "normal",
    focused: window.focused === true,
    left: window.left ?? 0,
    top: window.top ?? 0,
    width: window.width ?? 0,
    height: window.height ?? 0,
    tabs,
  };
}

/**
 * The message about all windows, as `windows.getAll` gives them with their tabs, at the time `now`.
 * `again`: see `Pairs.pair`, the soonest of all; absent when nothing is worth another look.
 */
export function messageOf(windows, pairs, now) {
  const open = windows.filter((window) => !window.incognito).slice(0, limits.windows);
  pairs.keepOnly(new Set(open.flatMap((window) => (window.tabs ?? []).map((tab) => tab.id))));
  let left = limits.tabs;
  let again;
  const told = open.map((window) => {
    const tabs = [];
    for (const tab of window.tabs ?? []) {
      if (tab.incognito) continue;
      // Whatever is left out, what is in front is told.
      if (left <= 0 && !tab.active) continue;
      left -= 1;
      const pair = pairs.pair({ id: tab.id, url: tab.url ?? "", title: tab.title ?? "", status: tab.status }, now);
      if (pair.again !== undefined) again = Math.min(again ?? Infinity, pair.again);
      tabs.push(toldTab(tab, pair));
    }
    return toldWindow(window, tabs);
  });
  return { message: within({ version: 1, windows: told }), again };
}

/** The message without background tabs where it would be too long. */
function within(message) {
  const bytes = (value) => new TextEncoder().encode(JSON.stringify(value)).length;
  if (message.windows.every((window) => window.tabs.length < 100) || bytes(message) <= limits.message) return message;
  const windows = message.windows.map((window) => ({ ...window, tabs: window.tabs.filter((tab) => tab.active) }));
  return { ...message, windows };
}

/** How long to wait for the next try after so many that failed, in milliseconds: 1, 2, 4 … 60 seconds. */
export function backOff(failures) {
  return Math.min(60_000, 1000 * 2 ** Math.min(failures, 6));
}
