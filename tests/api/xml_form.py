"""Answers printed as XML, read back as the values that the JSON form has."""

import re
import xml.etree.ElementTree as ElementTree


class XmlFault(Exception):
    """The text is not well formed, or not of the stated form."""


def value_of_xml(text, schema, resolve, is_valid):
    """The value of an answer of this schema. `resolve` follows references, `is_valid` tells whether a value
    fits a schema; it chooses between alternatives, since XML alone does not tell a number from a text."""
    try:
        root = ElementTree.fromstring(text)
    except ElementTree.ParseError as fault:
        raise XmlFault(f"not well formed: {fault}") from fault
    if root.tag != "response":
        raise XmlFault(f"the root is {root.tag}, not response")
    return _Reader(resolve, is_valid).value(root, schema)


class _Reader:
    def __init__(self, resolve, is_valid):
        self._resolve = resolve
        self._is_valid = is_valid

    def value(self, element, schema):
        schema = self._resolve(schema)
        if "anyOf" in schema:
            return self._alternative(element, schema["anyOf"])
        types = schema.get("type", "string")
        types = [types] if isinstance(types, str) else types
        if "object" in types:
            return self._object(element, schema)
        if "array" in types:
            return self._array(element, schema)
        if len(element):
            raise XmlFault(f"{element.tag} has elements in it")
        return _scalar(element.text or "", types)

    def _alternative(self, element, schemas):
        """The value by the first schema that it fits; by the last one where it fits none."""
        for schema in schemas[:-1]:
            try:
                value = self.value(element, schema)
            except XmlFault:
                continue
            if self._is_valid(value, schema):
                return value
        return self.value(element, schemas[-1])

    def _object(self, element, schema):
        _expect_no_text(element)
        members = {}
        for child in element:
            key = child.get("name", "") if child.tag == "member" else child.tag
            if key in members:
                raise XmlFault(f"{key} comes twice")
            others = schema.get("additionalProperties")
            members[key] = self.value(child, schema.get("properties", {}).get(key, others or {}))
        return members

    def _array(self, element, schema):
        _expect_no_text(element)
        for child in element:
            if child.tag != "item":
                raise XmlFault(f"an element of {element.tag} is {child.tag}, not item")
        return [self.value(child, schema["items"]) for child in element]


def _scalar(text, types):
    if "boolean" in types:
        return {"true": True, "false": False}.get(text, text)
    if "integer" in types:
        return int(text) if re.fullmatch(r"-?\d+", text) else text
    if text == "" and "null" in types:
        return None
    return text


def _expect_no_text(element):
    texts = [element.text, *(child.tail for child in element)]
    if any(text and text.strip() for text in texts):
        raise XmlFault(f"{element.tag} has text between its elements")
