"""The check of answers itself: on a small description, one fault each."""

import json
import unittest

from answers import AnswerCheck
from description import Description

JSON = "application/json;charset=utf-8"
XML = "application/xml;charset=utf-8"
SSE = "text/event-stream"
TEXT = "text/plain"

ROW = {
    "type": "object",
    "required": ["id", "hidden"],
    "properties": {
        "id": {"type": "string"},
        "hidden": {"type": "boolean"},
        "note": {"type": ["string", "null"]},
    },
    "additionalProperties": False,
}
LIST = {
    "type": "object",
    "required": ["items", "items_total"],
    "properties": {
        "items": {"type": "array", "items": {"$ref": "#/components/schemas/Row"}},
        "items_total": {"type": "integer"},
    },
    "additionalProperties": False,
}
EMPTY = {"type": "object", "additionalProperties": False}
STREAM = {
    "schema": {"type": "string"},
    "x-item-schema": {
        "type": "object",
        "required": ["id", "event", "data"],
        "properties": {"id": {"pattern": "^[0-9]+$"}, "event": {"enum": ["new"]}, "data": {"type": "object"}},
        "additionalProperties": False,
    },
}
METRICS = {
    "schema": {"type": "string"},
    "x-metrics": {"asked_total": {"type": "counter", "labels": ["by"]}, "rows": {"type": "gauge"}},
}
MISSING = {"x-body-optional": True, "content": {"text/plain": {"schema": {"const": "gone"}}}}
CONTENT = {"schema": {"anyOf": [{"$ref": "#/components/schemas/List"}, {"$ref": "#/components/schemas/Empty"}]}}
DOCUMENT = {
    "paths": {
        "/rows": {
            "get": {
                "responses": {
                    "200": {
                        "headers": {"ETag": {"required": True, "schema": {"pattern": "^[a-z]+$"}}},
                        "content": {JSON: CONTENT, XML: CONTENT},
                    },
                    "204": {"description": "none"},
                }
            },
            "x-other-methods": {"DELETE": {"204": {}}, "any": {"405": {}}},
        },
        "/metrics": {"get": {"responses": {"200": {"headers": {"ETag": {"schema": {}}}, "content": {TEXT: METRICS}}}}},
        "/events": {"get": {"responses": {"200": {"headers": {"ETag": {"schema": {}}}, "content": {SSE: STREAM}}}}},
        "/rows/{row}": {"get": {"responses": {"404": {"$ref": "#/components/responses/Missing"}}}},
    },
    "x-other-paths": {"/": {"404": {}}, "/rows": {"400": {}}},
    "components": {
        "schemas": {"Row": ROW, "List": LIST, "Empty": EMPTY},
        "responses": {"Missing": MISSING},
    },
}
ROWS = {"items": [{"id": "a", "hidden": False}], "items_total": 1}
ROWS_XML = (
    "<response><items><item><id>a</id><hidden>false</hidden></item></items>"
    "<items_total>1</items_total></response>"
)


class AnswersAreChecked(unittest.TestCase):
    def setUp(self):
        self.check = AnswerCheck(Description(DOCUMENT))

    def faults(self, body="", status=200, target="/rows", method="GET", content_type=JSON, **headers):
        body = body if isinstance(body, str) else json.dumps(body)
        headers = {"content-type": content_type} | ({"etag": "abc"} if status == 200 else {}) | headers
        return self.check.faults(
            {"method": method, "target": target, "status": status, "headers": headers, "body": body}
        )

    def assert_fault(self, text, faults):
        self.assertEqual(1, len(faults), faults)
        self.assertIn(text, faults[0])

    def test_what_is_described_passes(self):
        self.assertEqual([], self.faults(ROWS))
        self.assertEqual([], self.faults({}))
        self.assertEqual([], self.faults(status=204))
        self.assertEqual([], self.faults(ROWS, target="//%72ows/?a=%FF"))
        self.assertEqual([], self.faults(ROWS_XML, content_type=XML))
        self.assertEqual([], self.faults("<response/>", content_type=XML))

    def test_a_member_that_is_not_named_is_a_fault(self):
        self.assert_fault("200", self.faults(ROWS | {"more": 1}))
        row = {"id": "a", "hidden": False, "more": 1}
        self.assert_fault("200", self.faults({"items": [row], "items_total": 1}))
        self.assert_fault("200", self.faults(ROWS_XML.replace("<id>", "<more/><id>"), content_type=XML))

    def test_a_member_that_is_missing_is_a_fault(self):
        self.assert_fault("200", self.faults({"items": []}))
        self.assert_fault("200", self.faults(ROWS_XML.replace("<id>a</id>", ""), content_type=XML))

    def test_a_value_of_another_type_is_a_fault(self):
        self.assert_fault("200", self.faults(ROWS | {"items_total": "1"}))
        self.assert_fault("200", self.faults(ROWS_XML.replace(">false<", ">no<"), content_type=XML))

    def test_an_empty_element_is_a_null_where_a_null_may_be(self):
        self.assertEqual([], self.faults(ROWS_XML.replace("<id>", "<note/><id>"), content_type=XML))
        empty = ROWS_XML.replace("<hidden>false</hidden>", "<hidden/>")
        self.assert_fault("200", self.faults(empty, content_type=XML))

    def test_a_document_that_is_not_well_formed_is_a_fault(self):
        self.assert_fault("cannot be read", self.faults("{"))
        self.assert_fault("cannot be read", self.faults('{"items_total":1,"items_total":1}'))
        for xml in ["<response>", "<answer/>", "<response>text</response>", ROWS_XML.replace("item>", "row>")]:
            self.assertEqual(1, len(self.faults(xml, content_type=XML)), xml)

    def test_a_status_or_method_that_is_not_described_is_a_fault(self):
        self.assert_fault("the status 500", self.faults(status=500))
        self.assert_fault("the method PUT", self.faults(status=200, method="PUT", target="/rows/1"))
        self.assertEqual([], self.faults(status=204, method="DELETE"))
        self.assertEqual([], self.faults(status=405, method="PUT"))
        self.assert_fault("the status 204", self.faults(status=204, method="PUT"))

    def test_a_path_that_is_not_described_may_only_be_refused(self):
        self.assertEqual([], self.faults(status=404, target="/elsewhere"))
        self.assertEqual([], self.faults(status=400, target="/rows/1/2"))
        self.assert_fault("the status 200", self.faults(ROWS, target="/elsewhere"))
        self.assert_fault("the status 404", self.faults(status=404, target="/rows/1/2"))

    def test_a_header_is_checked(self):
        exchange = {"method": "GET", "target": "/rows", "status": 200, "headers": {"content-type": JSON}}
        self.assert_fault("etag is missing", self.check.faults(exchange | {"body": "{}"}))
        self.assert_fault("header etag", self.faults(ROWS, etag="ABC"))
        self.assert_fault("header server is not described", self.faults(ROWS, server="x"))

    def test_a_body_is_expected_where_one_is_described(self):
        self.assert_fault("body is missing", self.faults(""))
        self.assert_fault("content type", self.faults(ROWS, status=204))
        self.assert_fault("content type", self.faults(ROWS, content_type="text/html"))
        self.assertEqual([], self.faults(status=404, target="/rows/1"))
        self.assertEqual([], self.faults("gone", status=404, target="/rows/1", content_type="text/plain"))
        self.assert_fault("404", self.faults("lost", status=404, target="/rows/1", content_type="text/plain"))

    def test_each_event_of_a_stream_is_checked(self):
        def faults(body):
            return self.faults(body, target="/events", content_type=SSE)

        begin = "retry: 3000\nid: 7\n\n: nothing new\n\n"
        event = 'id: 8\nevent: new\ndata: {"path":"/a"}\n\n'
        self.assertEqual([], faults(begin))
        self.assertEqual([], faults(begin + event + "id: 9\nevent: ne"))
        self.assert_fault("is not one of", faults(begin + event.replace("new", "old")))
        self.assert_fault("cannot be read", faults(begin + event.replace("data: {", "data: ")))
        self.assert_fault("cannot be read", faults(begin + "more\n\n"))
        self.assert_fault("cannot be read", faults(begin + "event: new\n\n"))

    def test_each_metric_is_checked(self):
        def faults(body):
            return self.faults(body, target="/metrics", content_type=TEXT)

        metrics = '# HELP rows Rows.\n# TYPE rows gauge\nrows 7\n# TYPE asked_total counter\nasked_total{by="a, b"} 1\n'
        self.assertEqual([], faults(metrics))
        self.assert_fault("more is not described", faults(metrics + "more 1\n"))
        self.assert_fault("rows of type counter", faults(metrics.replace("gauge", "counter")))
        self.assert_fault("with the labels ['to']", faults(metrics.replace("by=", "to=")))
        self.assert_fault("the labels", faults(metrics.replace('b"}', "b}")))
        self.assert_fault("the value 'many'", faults(metrics.replace("rows 7", "rows many")))
        self.assert_fault("is no sample", faults(metrics + "\n"))

    def test_described_answers_that_never_came_are_told(self):
        self.faults(ROWS)
        self.faults(status=404, target="/rows/1")
        self.faults("rows 7\n", target="/metrics", content_type=TEXT)
        self.faults(": nothing new\n\n", target="/events", content_type=SSE)
        self.assertEqual([("GET /rows", "200", XML), ("GET /rows", "204", "")], list(self.check.unseen()))


if __name__ == "__main__":
    unittest.main()
