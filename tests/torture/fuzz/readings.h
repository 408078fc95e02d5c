// SPDX-License-Identifier: MIT
// Arrays as clients read them, against the messages that they were received as.
#ifndef ORB_TESTS_TORTURE_FUZZ_READINGS_H_
#define ORB_TESTS_TORTURE_FUZZ_READINGS_H_

#include "array/payload.h"
#include "orb/qxorbclient.h"

namespace orb::torture {

/// Calls every function that reads an array and compares what it gives with the message,
/// also of the elements of structs and cells, some dozens of them. Ends the program at
/// the first difference.
void expectReadings(orbArray a, const KALDEX_Array& message);

/// Whether a client can hold arrays of this type; a server may send any number.
bool isHeld(QXType type);

}  // namespace orb::torture

#endif  // ORB_TESTS_TORTURE_FUZZ_READINGS_H_
