# SPDX-License-Identifier: MIT
# The arrays of the benchmark as a user of Cap'n Proto would describe them.
@0xc1a3e5d7f9b2864d;

using Cxx = import "/capnp/c++.capnp";
$Cxx.namespace("orb::bench::peer");

struct Value {
  dimensions @0 :List(UInt64);
  union {
    matrix :group {
      real @1 :List(Float64);
      imaginary @2 :List(Float64);
    }
    shorts @3 :List(UInt16);
    text @4 :Text;
    cells @5 :List(Value);
    records :group {
      fieldNames @6 :List(Text);
      elements @7 :List(Value);
    }
    sparse :group {
      rows @8 :List(UInt64);
      columnStarts @9 :List(UInt64);
      values @10 :List(Float64);
    }
  }
}

interface Echo {
  all @0 (input :Value) -> (output :Value);
  first @1 (input :Value) -> (output :Value);
}
