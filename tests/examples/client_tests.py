"""The example clients, run against a real set.

    client_tests.py EPGHOST EXAMPLES-FOLDER
"""

import json
import os
import pathlib
import subprocess
import sys
import unittest
import urllib.request

sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
from running_set import RunningSet  # noqa: E402 (beside the tests that share it)

NOON = "2026-08-23T12:00:00Z"
EPGHOST, EXAMPLES = None, None


def without_proxies():
    return {key: value for key, value in os.environ.items() if not key.lower().endswith("_proxy")}


def ask(url, path, method="GET"):
    """The document of the answer; a list without items where it has none."""
    opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
    with opener.open(urllib.request.Request(url + path, method=method), timeout=60) as answer:
        return json.loads(answer.read() or '{"items":[]}')


def schedules(url):
    """The bookings as (title, start, status)."""
    items = ask(url, "/ws/epg2/schedules")["items"]
    return [(item["program_name"], item["start"], item["status"]) for item in items]


class ClientTests:
    """What holds for both clients. The tests share a set at noon, and leave nothing booked."""

    client = None

    @classmethod
    def setUpClass(cls):
        cls.tv = cls.enterClassContext(RunningSet(EPGHOST, "--now", NOON))

    def tearDown(self):
        for identifier in [item["id"] for item in ask(self.tv.url, "/ws/epg2/schedules")["items"]]:
            ask(self.tv.url, "/ws/epg2/schedules/" + identifier, "DELETE")

    def run_client(self, url, *options, typed=""):
        """The exit status and what was printed."""
        command = [EXAMPLES + "/" + self.client, "--base", url, *options]
        done = subprocess.run(
            command, input=typed, capture_output=True, text=True, timeout=120, env=without_proxies(), check=False
        )
        self.errors = done.stderr
        return done.returncode, done.stdout

    def listed(self, output):
        """The lines of the list: number, times, title with channel."""
        return [line.split(maxsplit=2) for line in output.splitlines() if line[:3].strip().isdecimal()]

    def test_lists_what_is_long_and_starts_this_evening(self):
        status, output = self.run_client(self.tv.url, typed="\n")
        self.assertEqual(0, status, self.errors)
        films = self.listed(output)
        self.assertEqual([str(number) for number in range(1, 26)], [number for number, _, _ in films])
        self.assertEqual(["18:00-20:00", "A Winter in Orrin (Lantern Film)"], films[0][1:])
        for _, times, title in films:
            start, end = (int(time[:2]) * 60 + int(time[3:]) for time in times.split("-"))
            self.assertGreaterEqual(start, 18 * 60)
            self.assertGreaterEqual((end - start) % (24 * 60), 80, title)
        self.assertEqual([], schedules(self.tv.url))

    def test_lists_nothing_that_has_begun(self):
        with RunningSet(EPGHOST, "--now", "2026-08-23T21:30:00Z") as tv:
            _, output = self.run_client(tv.url, typed="\n")
            self.assertEqual({"22:00-00:00"}, {times for _, times, _ in self.listed(output)})

    def test_books_the_number_that_is_typed(self):
        status, output = self.run_client(self.tv.url, typed="2\n")
        self.assertEqual(0, status, self.errors)
        title = self.listed(output)[1][2]
        self.assertIn(f"Booked: 18:00-20:00  {title}", output)
        name = title[: title.rindex(" (")]
        self.assertEqual([(name, "2026-08-23T18:00:00+00:00", "VIEW")], schedules(self.tv.url))

    def test_books_a_recording_without_asking(self):
        status, output = self.run_client(self.tv.url, "--book", "1", "--status", "RECORD")
        self.assertEqual(0, status, self.errors)
        self.assertIn("Booked: 18:00-20:00  A Winter in Orrin (Lantern Film)", output)
        self.assertEqual([("A Winter in Orrin", "2026-08-23T18:00:00+00:00", "RECORD")], schedules(self.tv.url))

    def test_says_what_is_in_the_way_and_replaces_it_when_told(self):
        self.run_client(self.tv.url, "--book", "1")
        before = schedules(self.tv.url)
        status, output = self.run_client(self.tv.url, "--book", "2")
        self.assertEqual(1, status)
        self.assertIn("Not booked. In the way:\n  18:00-20:00  A Winter in Orrin (Lantern Film)\n", output)
        self.assertIn("--replace", output)
        self.assertEqual(before, schedules(self.tv.url))
        status, output = self.run_client(self.tv.url, "--book", "2", "--replace")
        self.assertEqual(0, status)
        self.assertIn("Booked: ", output)
        after = schedules(self.tv.url)
        self.assertEqual(1, len(after))
        self.assertNotEqual(before, after)

    def test_says_that_the_set_cannot_record(self):
        with RunningSet(EPGHOST, "--now", NOON, "--pvr", "no-device") as tv:
            status, output = self.run_client(tv.url, "--book", "1", "--status", "RECORD")
            self.assertEqual(1, status)
            self.assertIn("Not booked: the set cannot record now.", output)
            self.assertEqual([], schedules(tv.url))

    def test_refuses_a_number_that_is_not_listed(self):
        for number in ["0", "26", "1x"]:
            status, output = self.run_client(self.tv.url, typed=number + "\n")
            self.assertEqual(1, status, number)
            self.assertIn(f"There is no number {number} in the list.", output)
        self.assertEqual([], schedules(self.tv.url))

    def test_says_when_there_is_no_film(self):
        status, output = self.run_client(self.tv.url, "--minutes", "300")
        self.assertEqual((1, "No film tonight.\n"), (status, output))

    def test_says_when_there_is_no_set(self):
        status, output = self.run_client("http://127.0.0.1:1")
        self.assertEqual((2, ""), (status, output))
        self.assertIn("127.0.0.1", self.errors)


class PythonClient(ClientTests, unittest.TestCase):
    client = "tonight.py"


class ShellClient(ClientTests, unittest.TestCase):
    client = "tonight.sh"


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    EPGHOST, EXAMPLES = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
