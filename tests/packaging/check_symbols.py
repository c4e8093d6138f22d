"""Fails unless the library exports exactly the functions that its header declares, and bears its soname."""

import argparse
import re
import subprocess
import sys

parser = argparse.ArgumentParser()
parser.add_argument("--nm", required=True)
parser.add_argument("--readelf", required=True)
parser.add_argument("--soname", required=True)
parser.add_argument("library")
parser.add_argument("header")
arguments = parser.parse_args()


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


exported = {line.split()[-1] for line in output_of(arguments.nm, "-D", "--defined-only", arguments.library).splitlines()}
with open(arguments.header, encoding="utf-8") as header:
    declared = set(re.findall(r"^ZOR_API\b[^;(]*?\b(zor_\w+)\s*\(", header.read(), re.MULTILINE))

errors = [f"exported, but not declared: {name}" for name in sorted(exported - declared)]
errors += [f"declared, but not exported: {name}" for name in sorted(declared - exported)]
if not declared:
    errors.append("the header declares no function")
if f"soname: [{arguments.soname}]" not in output_of(arguments.readelf, "-d", arguments.library):
    errors.append(f"the soname is not {arguments.soname}")
print("\n".join(errors) or f"{len(exported)} functions")
sys.exit(bool(errors))
