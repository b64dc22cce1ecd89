"""How pages are read, and what counts as the answer shown."""

import unittest

from pages import PageFault, blocks_of, fits

PAGE = """Text.

```sh
first
```

```json
{"a":1}
```

<!-- not run: it takes a day -->
```sh
second
```

Between.

```json
{"b":1}
```

```toml
key = 1
```

```sh
third \\
  more
```
```text
done
```
"""


class PagesAreRead(unittest.TestCase):
    def test_each_block_of_commands_is_found(self):
        commands = [block.commands for block in blocks_of(PAGE)]
        self.assertEqual(["first\n", "second\n", "third \\\n  more\n"], commands)
        self.assertEqual([3, 12, 26], [block.line for block in blocks_of(PAGE)])

    def test_an_answer_belongs_to_the_commands_right_before_it(self):
        answers = [(block.answer_kind, block.answer) for block in blocks_of(PAGE)]
        self.assertEqual([("json", '{"a":1}\n'), (None, None), ("text", "done\n")], answers)

    def test_a_block_is_left_out_for_a_stated_reason_alone(self):
        self.assertEqual([None, "it takes a day", None], [block.not_run for block in blocks_of(PAGE)])
        self.assertIsNone(blocks_of("<!-- not run: -->\n```sh\nx\n```\n")[0].not_run)

    def test_a_block_without_an_end_is_a_fault(self):
        with self.assertRaises(PageFault):
            blocks_of("```sh\nx\n")


class AnswersAreCompared(unittest.TestCase):
    def test_json_by_its_values_and_the_order_of_its_members(self):
        self.assertTrue(fits("json", '{ "a": 1,\n"b": [true] }', '{"a":1,"b":[true]}'))
        for other in ['{"a":1,"b":[false]}', '{"b":[true],"a":1}', '{"a":1}', '{"a":true,"b":[true]}', ""]:
            self.assertFalse(fits("json", '{"a":1,"b":[true]}', other), other)

    def test_dots_stand_for_any_value(self):
        self.assertTrue(fits("json", '{"a":"...","b":1}', '{"a":{"c":2},"b":1}'))
        self.assertFalse(fits("json", '{"a":"...","b":1}', '{"a":{"c":2},"b":2}'))
        self.assertTrue(fits("text", "from ... to 2", "from 1 to 2\n"))
        self.assertFalse(fits("text", "from ... to 2", "from 1 to 3\n"))

    def test_several_answers_one_after_the_other(self):
        self.assertTrue(fits("json", '{"a":1}\n{"b":2}', '{"a":1}\n{"b":2}\n'))
        self.assertFalse(fits("json", '{"a":1}', '{"a":1}\n{"b":2}\n'))

    def test_text_as_it_stands(self):
        self.assertTrue(fits("text", "a.b\n", "a.b"))
        self.assertFalse(fits("text", "a.b\n", "axb"))


if __name__ == "__main__":
    unittest.main()
