#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks each line of standard input by a JSON schema, and prints it again with its members sorted.

checkJson.py SCHEMA. Status 0: all lines are valid; 1: one is not, which is told; 77: there is no jsonschema.
"""
import json
import sys

try:
    import jsonschema
except ImportError:
    sys.exit(77)


def member_once(pairs):
    names = [name for name, value in pairs]
    if len(names) != len(set(names)):
        raise ValueError("a member is there twice: " + " ".join(names))
    return dict(pairs)


with open(sys.argv[1], encoding="utf-8") as file:
    schema = json.load(file)
jsonschema.Draft7Validator.check_schema(schema)
validator = jsonschema.Draft7Validator(schema)
for line in sys.stdin.buffer:
    try:
        value = json.loads(line.decode("ascii"), object_pairs_hook=member_once)
        validator.validate(value)
    except (ValueError, jsonschema.ValidationError) as problem:
        sys.exit(f"{line!r}: {problem}")
    print(json.dumps(value, sort_keys=True))
