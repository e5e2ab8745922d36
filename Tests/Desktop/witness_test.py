#!/usr/bin/python3
"""The comparison of rows with the truth: what counts as right, as late and as wrong."""

import unittest

from witness import NOBODY, TICK, Front, Timeline, compare, recorded_at

WRITING = Front("editor", "notes", None)
READING = Front("browser", "news", "http://news/")
OTHER_PAGE = Front("browser", "sport", "http://sport/")


def row(start, end, front, kind=0):
    return {
        "start": start, "end": end, "kind": kind,
        "bundle_id": front.application, "title": front.title, "url": front.address,
    }


def timeline(*changes):
    made = Timeline()
    for moment, front in changes:
        made.now(front, moment)
    return made


class Comparing(unittest.TestCase):
    def test_rows_that_say_what_was_are_right_in_every_second(self):
        truth = timeline((0, WRITING), (10, READING))
        score = compare(truth, [row(0, 10, WRITING), row(10, 20, READING)], 0, 20)
        self.assertEqual(score.seconds, 20)
        self.assertEqual((score.raw["all"], score.fair["all"]), (20, 20))
        self.assertFalse(score.wrong)

    def test_a_tick_late_is_fair_and_not_right(self):
        truth = timeline((0, WRITING), (10, READING))
        score = compare(truth, [row(0, 10 + TICK, WRITING), row(10 + TICK, 20, READING)], 0, 20)
        self.assertEqual((score.raw["all"], score.fair["all"]), (18, 20))

    def test_more_than_a_tick_late_is_wrong(self):
        truth = timeline((0, WRITING), (10, READING))
        score = compare(truth, [row(0, 15, WRITING), row(15, 20, READING)], 0, 20)
        self.assertEqual((score.raw["all"], score.fair["all"]), (15, 17))
        self.assertEqual(score.wrong, {(READING, WRITING): 3})

    def test_each_field_counts_for_itself(self):
        mixed = Front("browser", "news", "http://sport/")
        score = compare(timeline((0, OTHER_PAGE)), [row(0, 10, mixed)], 0, 10)
        self.assertEqual([score.raw[each] for each in ("application", "title", "address", "all")], [10, 0, 10, 0])

    def test_a_pair_of_two_pages_is_never_right(self):
        truth = timeline((0, READING), (1, OTHER_PAGE))
        mixed = Front("browser", "news", "http://sport/")
        self.assertEqual(compare(truth, [row(0, 3, mixed)], 0, 3).fair["all"], 0)

    def test_what_is_recorded_of_nobody_is_wrong_and_a_gap_is_right(self):
        truth = timeline((0, WRITING))
        truth.nobody_between(5, 10)
        self.assertEqual(compare(truth, [row(0, 5, WRITING)], 0, 10).raw["all"], 10)
        score = compare(truth, [row(0, 10, WRITING)], 0, 10)
        self.assertEqual((score.raw["all"], score.fair["all"]), (5, 7))
        self.assertEqual(score.wrong, {(NOBODY, WRITING): 3})

    def test_what_was_in_front_too_shortly_for_a_row_is_told_apart(self):
        truth = timeline((0, WRITING), (5, READING), (5.9, OTHER_PAGE))
        score = compare(truth, [row(0, 5, WRITING), row(5.9, 10, OTHER_PAGE)], 0, 10)
        self.assertEqual((score.seconds, score.short, score.raw["all"]), (9, 1, 9))
        score = compare(truth, [row(0, 2, WRITING), row(5.9, 10, OTHER_PAGE)], 0, 10)
        self.assertEqual(score.wrong, {(WRITING, NOBODY): 2})

    def test_moments_of_which_nobody_can_tell_are_left_out(self):
        truth = timeline((0, WRITING), (4, None), (6, READING))
        score = compare(truth, [row(0, 6, WRITING), row(6, 10, READING)], 0, 10)
        self.assertEqual((score.seconds, score.unknown, score.raw["all"]), (8, 2, 8))

    def test_what_plays_alongside_is_not_the_main_line(self):
        self.assertEqual(recorded_at([row(0, 10, READING, kind=2)], 5), NOBODY)


if __name__ == "__main__":
    unittest.main()
