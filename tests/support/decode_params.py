# SPDX-License-Identifier: MIT
"""Prints request bodies, given in hexadecimal, as text: one line for each.

The classes come from protoc's Python output, whose folder is on PYTHONPATH.
"""
import sys

from google.protobuf import text_format
from orb.client.KALDEXParams_pb2 import KALDEX_Params

for body in sys.argv[1:]:
    params = KALDEX_Params.FromString(bytes.fromhex(body))
    print(text_format.MessageToString(params, as_one_line=True))
