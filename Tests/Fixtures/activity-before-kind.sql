-- The sessions file as it was before there were kinds of session.
PRAGMA journal_mode = WAL;
CREATE TABLE sessions (
    id        INTEGER PRIMARY KEY AUTOINCREMENT,
    start     REAL NOT NULL,
    end       REAL NOT NULL,
    bundle_id TEXT NOT NULL,
    app_name  TEXT NOT NULL,
    title     TEXT NOT NULL DEFAULT '',
    url       TEXT,
    domain    TEXT,
    project   TEXT
);
CREATE INDEX sessions_start ON sessions(start);
INSERT INTO sessions (start, end, bundle_id, app_name, title, url, domain, project) VALUES
    (1700000000.25, 1700000060.5, 'org.mozilla.firefox', 'Firefox', 'Kestrels', 'https://example.org/k', 'example.org', NULL),
    (1700000060.5, 1700000100, 'com.microsoft.VSCode', 'Code', '', NULL, NULL, 'kestrel');
