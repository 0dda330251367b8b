# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads docs/mqtt-api.yaml: what scripts/mqtt_api and the tests of the reference know about it."""

import json
import pathlib

import yaml

DOCUMENT = pathlib.Path(__file__).resolve().parent.parent / "docs" / "mqtt-api.yaml"


class Fault(Exception):
    """What is wrong with a document, in words."""


class _StrictLoader(getattr(yaml, "CSafeLoader", yaml.SafeLoader)):
    """Refuses a key that is there twice, of which YAML readers silently take the last."""

    def construct_mapping(self, node, deep=False):
        keys = [self.construct_object(key, deep=True) for key, _ in node.value]
        for key in keys:
            if keys.count(key) > 1:
                raise Fault(f'line {node.start_mark.line + 1}: "{key}" is there twice')
        return super().construct_mapping(node, deep)


def load(path=DOCUMENT):
    with open(path, encoding="utf-8") as file:
        try:
            return yaml.load(file, _StrictLoader)
        except yaml.YAMLError as error:
            raise Fault(str(error)) from error


def target(document, reference):
    """What a reference such as "#/components/schemas/text" leads to."""
    if not reference.startswith("#/"):
        raise Fault(f"{reference}: does not lead into the document")
    found = document
    for step in reference[2:].split("/"):
        step = step.replace("~1", "/").replace("~0", "~")
        if not isinstance(found, dict) or step not in found:
            raise Fault(f"{reference}: leads nowhere")
        found = found[step]
    return found


def resolved(document, value):
    """The value with everything in it that is a reference replaced by what it leads to."""
    if isinstance(value, dict):
        if "$ref" in value:
            return resolved(document, target(document, value["$ref"]))
        return {key: resolved(document, member) for key, member in value.items()}
    if isinstance(value, list):
        return [resolved(document, element) for element in value]
    return value


def wire(value):
    """A payload as it is sent."""
    if isinstance(value, str):
        return value
    return json.dumps(value, ensure_ascii=False, separators=(",", ":"))


def catalogue(document):
    """One entry for each message that the display receives or sends, in the document's order."""
    places = {}
    for name, channel in document["channels"].items():
        for message in channel["messages"]:
            places[f"#/channels/{name}/messages/{message}"] = message
    entries = []
    for operation in document["operations"].values():
        reference = operation["channel"]["$ref"]
        channel = target(document, reference)
        binding = resolved(document, operation)["bindings"]["mqtt"]
        wanted = [message["$ref"] for message in operation.get("messages", [])]
        for message in wanted or [f"{reference}/messages/{name}" for name in channel["messages"]]:
            described = resolved(document, target(document, message))
            entries.append({
                "message": places[message],
                "topic": channel["address"],
                "title": channel.get("title", ""),
                "received": operation["action"] == "receive",
                "qos": binding["qos"],
                "retain": binding["retain"],
                "json": described.get("contentType") == "application/json",
                "summary": described.get("summary", ""),
                "payload": described["payload"],
                "examples": [example["payload"] for example in described["examples"]],
                "sent": [wire(example["payload"]) for example in described["examples"]],
                "property": described.get("x-property"),
                "unit": described.get("x-unit", ""),
                "pages": described.get("x-pages"),
                "cause": described.get("x-cause", ""),
                "odd": described.get("x-odd"),
            })
    return entries
