// The tables of the resource log, as a new file gets them and as an earlier one is brought up to them.
#pragma once

#include <array>
#include <utility>

namespace kestrio::resourceTables {

/// Everything that is made when missing. `system_hours` holds the sums and the greatest of whole hours of minutes; a
/// change of a minute, by whatever version of the program, does away with those of its hour.
inline constexpr auto schema = R"(
CREATE TABLE IF NOT EXISTS apps (
    id   INTEGER PRIMARY KEY,
    key  TEXT NOT NULL UNIQUE,
    name TEXT NOT NULL
);
CREATE TABLE IF NOT EXISTS system_minutes (
    minute     INTEGER PRIMARY KEY,
    cpu        REAL NOT NULL,
    cpu_peak   REAL NOT NULL,
    cpu_p      REAL NOT NULL,
    cpu_e      REAL NOT NULL,
    mem_used   INTEGER NOT NULL,
    mem_total  INTEGER NOT NULL,
    compressed INTEGER NOT NULL,
    swap_used  INTEGER NOT NULL,
    swap_in    INTEGER NOT NULL,
    swap_out   INTEGER NOT NULL,
    pressure   INTEGER NOT NULL,
    thermal    INTEGER NOT NULL,
    lag_ms     INTEGER NOT NULL,
    front      INTEGER
);
CREATE TABLE IF NOT EXISTS system_hours (
    hour         INTEGER PRIMARY KEY,
    cpu          REAL NOT NULL,
    cpu_peak     REAL NOT NULL,
    cpu_p        REAL NOT NULL,
    cpu_e        REAL NOT NULL,
    mem_used     INTEGER NOT NULL,
    swap_used    INTEGER NOT NULL,
    swap_in      INTEGER NOT NULL,
    swap_out     INTEGER NOT NULL,
    pressure     INTEGER NOT NULL,
    pressure_min INTEGER NOT NULL,
    lag_ms       INTEGER NOT NULL,
    minutes      INTEGER NOT NULL,
    ram_r        REAL NOT NULL,
    ram_w        REAL NOT NULL,
    ram_peak     REAL NOT NULL,
    ssd_r        REAL NOT NULL,
    ssd_w        REAL NOT NULL,
    ssd_peak     REAL NOT NULL,
    active_s     INTEGER NOT NULL,
    idle_s       INTEGER NOT NULL,
    away_s       INTEGER NOT NULL,
    switches     INTEGER NOT NULL
);
CREATE TRIGGER IF NOT EXISTS system_minutes_written AFTER INSERT ON system_minutes BEGIN
    DELETE FROM system_hours WHERE hour = new.minute / 3600 * 3600;
END;
CREATE TRIGGER IF NOT EXISTS system_minutes_deleted AFTER DELETE ON system_minutes BEGIN
    DELETE FROM system_hours WHERE hour = old.minute / 3600 * 3600;
END;
CREATE TABLE IF NOT EXISTS app_minutes (
    minute    INTEGER NOT NULL,
    app       INTEGER NOT NULL,
    cpu       REAL NOT NULL,
    cpu_peak  REAL NOT NULL,
    pcore     REAL,
    memory    INTEGER NOT NULL,
    mem_peak  INTEGER NOT NULL,
    resident  INTEGER NOT NULL,
    pageins   INTEGER NOT NULL,
    front     REAL NOT NULL,
    state     INTEGER NOT NULL,
    processes INTEGER NOT NULL,
    PRIMARY KEY (minute, app)
) WITHOUT ROWID;
CREATE INDEX IF NOT EXISTS app_minutes_app ON app_minutes(app, minute);
CREATE TABLE IF NOT EXISTS events (
    id     INTEGER PRIMARY KEY AUTOINCREMENT,
    at     REAL NOT NULL,
    kind   TEXT NOT NULL,
    app    INTEGER,
    detail TEXT NOT NULL DEFAULT '',
    bytes  INTEGER
);
CREATE INDEX IF NOT EXISTS events_at ON events(at);
CREATE TABLE IF NOT EXISTS configs (
    id         INTEGER PRIMARY KEY,
    key        TEXT NOT NULL UNIQUE,
    label      TEXT NOT NULL,
    first_seen REAL NOT NULL
);
CREATE TABLE IF NOT EXISTS system_seconds (
    ts       INTEGER PRIMARY KEY,
    cpu      INTEGER NOT NULL,
    cpu_p    INTEGER NOT NULL,
    cpu_e    INTEGER NOT NULL,
    mem_mb   INTEGER NOT NULL,
    comp_mb  INTEGER NOT NULL,
    swap_mb  INTEGER NOT NULL,
    pressure INTEGER NOT NULL,
    thermal  INTEGER NOT NULL,
    ram_r    INTEGER NOT NULL,
    ram_w    INTEGER NOT NULL,
    ssd_r    INTEGER NOT NULL,
    ssd_w    INTEGER NOT NULL,
    swap_in  INTEGER NOT NULL,
    swap_out INTEGER NOT NULL,
    lag_ms   INTEGER NOT NULL,
    idle_s   INTEGER NOT NULL,
    state    INTEGER NOT NULL,
    front    INTEGER
) WITHOUT ROWID;
)";

/// A column that a file from before it lacks: its name and its definition.
using AddedColumn = std::pair<const char*, const char*>;

inline constexpr std::array<AddedColumn, 22> systemMinuteColumns{{
    {"ram_r", "INTEGER NOT NULL DEFAULT 0"},
    {"ram_w", "INTEGER NOT NULL DEFAULT 0"},
    {"ram_peak", "INTEGER NOT NULL DEFAULT 0"},
    {"ssd_r", "INTEGER NOT NULL DEFAULT 0"},
    {"ssd_w", "INTEGER NOT NULL DEFAULT 0"},
    {"ssd_peak", "INTEGER NOT NULL DEFAULT 0"},
    {"ssd_wait_us", "INTEGER NOT NULL DEFAULT 0"},
    {"active_s", "INTEGER NOT NULL DEFAULT 0"},
    {"idle_s", "INTEGER NOT NULL DEFAULT 0"},
    {"away_s", "INTEGER NOT NULL DEFAULT 0"},
    {"paused_s", "INTEGER NOT NULL DEFAULT 0"},
    {"switches", "INTEGER NOT NULL DEFAULT 0"},
    {"apps_open", "INTEGER NOT NULL DEFAULT 0"},
    {"procs", "INTEGER NOT NULL DEFAULT 0"},
    {"battery", "INTEGER"},
    {"on_ac", "INTEGER"},
    {"low_power", "INTEGER NOT NULL DEFAULT 0"},
    {"temp", "REAL"},
    {"config", "INTEGER"},
    {"frozen_avg", "REAL NOT NULL DEFAULT 0"},
    {"eff_avg", "REAL NOT NULL DEFAULT 0"},
    {"frozen_mb", "INTEGER NOT NULL DEFAULT 0"},
}};

inline constexpr std::array<AddedColumn, 4> appMinuteColumns{{
    {"disk_r", "INTEGER NOT NULL DEFAULT 0"},
    {"disk_w", "INTEGER NOT NULL DEFAULT 0"},
    {"energy_mj", "INTEGER NOT NULL DEFAULT 0"},
    {"wakeups", "INTEGER NOT NULL DEFAULT 0"},
}};

} // namespace kestrio::resourceTables
