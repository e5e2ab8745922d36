#!/usr/bin/python3
"""The table of includes forbids what it should, and says so where it is."""

import importlib.machinery
import importlib.util
import json
import pathlib
import sys
import unittest

sys.dont_write_bytecode = True  # what is loaded here has no place in the source tree

ROOT = pathlib.Path(__file__).resolve().parents[2]


def loaded(path):
    loader = importlib.machinery.SourceFileLoader("check_includes", str(path))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("check_includes", loader))
    loader.exec_module(module)
    return module


check = loaded(ROOT / "Tools" / "check-includes")
table = check.Table(json.loads((ROOT / "Tools" / "includes.json").read_text()))

FORBIDDEN = [
    ("Kestrio/Pages/TodayPage.cpp", "<QString>", "Kestrio/Pages may not include Qt headers, which belong to Kestrio/Views, "),
    ("Kestrio/Pages/TodayPage.cpp", "<QtCore/qglobal.h>", "Qt headers"),
    ("Kestrio/Activity/ActivityMonitor.cpp", "<xcb/xcb.h>", "which belong to Kestrio/Platform/Linux and Tests."),
    ("Kestrio/Activity/MediaInspector.cpp", "<pulse/pulseaudio.h>", "Pulse headers"),
    ("Kestrio/Shell/AppModel.cpp", "<sdbus-c++/sdbus-c++.h>", "D-Bus headers"),
    ("Kestrio/Shell/AppModel.cpp", "<wayland-client.h>", "Wayland headers"),
    ("Kestrio/Reports/ReportBuilder.cpp", "<sqlite3.h>", "SQLite headers"),
    ("Kestrio/Activity/ActivityMonitor.cpp", "<sqlite3.h>", "SQLite headers"),
    ("Kestrio/Model/Models.h", "<unicode/uchar.h>", "ICU headers"),
    ("Kestrio/Optimizer/Optimizer.cpp", "<sys/resource.h>", "system headers"),
    ("TindraCore/Decisions.h", "<fmt/format.h>", "TindraCore may not include fmt headers"),
    ("TindraCore/Decisions.h", '"Kestrio/Base/Date.h"', "TindraCore may not include Kestrio/Base; it may include the"),
    ("Kestrio/Base/Date.h", '"Kestrio/Model/Models.h"', "Kestrio/Base may not include Kestrio/Model; it may include the"),
    ("Kestrio/Classification/Categorizer.cpp", '"Kestrio/Platform/Workspace.h"', "it may include TindraCore, Kestrio/Model and"),
    ("Kestrio/Activity/Database.cpp", '"Kestrio/Platform/Linux/Locations.h"', "may not include Kestrio/Platform/Linux"),
    ("Kestrio/Activity/Database.cpp", '"Kestrio/Platform/Testing/FakeClock.h"', "may not include Kestrio/Platform/Testing"),
    ("Kestrio/Resources/ResourceRecorder.cpp", '"Kestrio/Optimizer/Optimizer.h"', "may not include Kestrio/Optimizer"),
    ("Programs/kestrio.cpp", "<QGuiApplication>", "Qt headers"),
    ("Kestrio/Base/Date.cpp", '"Date.h"', "includes are written from the root."),
    ("Kestrio/Base/Date.cpp", "<boost/any.hpp>", "is no standard header and belongs to no library of the table."),
    ("Elsewhere/Date.cpp", "<vector>", "its folder is not in Tools/includes.json"),
]

ALLOWED = [
    ("Kestrio/Activity/Database.cpp", "<sqlite3.h>"),
    ("Kestrio/Resources/ResourceStore.cpp", "<sqlite3.h>"),
    ("Kestrio/Base/Sqlite.cpp", "<sqlite3.h>"),
    ("Kestrio/Link/BackgroundService.cpp", "<sdbus-c++/sdbus-c++.h>"),
    ("Kestrio/Platform/Linux/X11.cpp", "<xcb/screensaver.h>"),
    ("Kestrio/Platform/Linux/X11.cpp", '"Kestrio/Platform/Workspace.h"'),
    ("Kestrio/Platform/Linux/X11.cpp", '"Kestrio/Platform/Linux/Locations.h"'),
    ("Kestrio/Platform/Workspace.h", "<sys/types.h>"),
    ("Kestrio/Views/DashboardView.cpp", "<QObject>"),
    ("Kestrio/Model/Models.h", "<cstdint>"),
    ("Programs/kestrio.cpp", '"Kestrio/Platform/Linux/Locations.h"'),
    ("TindraCore/Decisions.cpp", '"TindraCore/Decisions.h"'),
]


class CheckIncludes(unittest.TestCase):
    def test_what_the_table_does_not_list_is_found_with_its_line_and_a_sentence(self):
        for path, header, sentence in FORBIDDEN:
            with self.subTest(f"{path} includes {header}"):
                found = list(check.findings(table, path, f"// first line\n#include {header}\n"))
                self.assertEqual(len(found), 1)
                self.assertTrue(found[0].startswith(f"{path}:2: "), found[0])
                self.assertIn(sentence, found[0])

    def test_what_the_table_lists_is_left_alone(self):
        for path, header in ALLOWED:
            with self.subTest(f"{path} includes {header}"):
                self.assertEqual(list(check.findings(table, path, f"#include {header}\n")), [])

    def test_an_include_counts_however_it_is_spaced_and_not_in_a_comment(self):
        text = '  #  include   <QString>\n// #include <QString>\n#    include <QString> // why\n'
        lines = [finding.split(":")[1] for finding in check.findings(table, "TindraCore/Rules.h", text)]
        self.assertEqual(lines, ["1", "3"])

    def test_a_table_with_an_arrow_that_runs_backwards_is_at_fault(self):
        folders = {"A": {"folders": ["B"], "externals": ["C"]}, "B": {"folders": ["A"], "externals": []}}
        faults = list(check.Table({"externals": {}, "folders": folders, "files": {}}).faults())
        self.assertEqual(
            faults,
            [
                'the table lets A include "C", which is not among its externals.',
                "the table goes round in a circle: A -> B -> A.",
            ],
        )

    def test_the_checked_in_table_has_no_fault(self):
        self.assertEqual(list(table.faults()), [])


if __name__ == "__main__":
    unittest.main()
