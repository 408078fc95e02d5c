// SPDX-License-Identifier: MIT
// The exported functions and those of the table by number, and how often each was called
// with effect.
#ifndef ORB_CLIENT_MODEL_FUNCTIONS_H_
#define ORB_CLIENT_MODEL_FUNCTIONS_H_

#include <array>
#include <cstddef>
#include <cstdint>

#define ORB_MODEL_FUNCTIONS(X)      \
  X(orbCreateNumericArray)          \
  X(orbCreateNumericMatrix)         \
  X(orbCreateDoubleMatrix)          \
  X(orbCreateDoubleScalar)          \
  X(orbCreateLogicalArray)          \
  X(orbCreateLogicalMatrix)         \
  X(orbCreateLogicalScalar)         \
  X(orbCreateCharArray)             \
  X(orbCreateString)                \
  X(orbCreateCharMatrixFromStrings) \
  X(orbCreateCellArray)             \
  X(orbCreateCellMatrix)            \
  X(orbCreateStructArray)           \
  X(orbCreateStructMatrix)          \
  X(orbCreateSparse)                \
  X(orbCreateSparseLogicalMatrix)   \
  X(orbDestroyArray)                \
  X(orbDuplicateArray)              \
  X(orbFree)                        \
  X(orbGetClassID)                  \
  X(orbGetClassName)                \
  X(orbIsComplex)                   \
  X(orbGetElementSize)              \
  X(orbGetNumberOfDimensions)       \
  X(orbGetDimensions)               \
  X(orbGetNumberOfElements)         \
  X(orbCalcSingleSubscript)         \
  X(orbGetM)                        \
  X(orbGetN)                        \
  X(orbSetM)                        \
  X(orbSetN)                        \
  X(orbSetDimensions)               \
  X(orbGetScalar)                   \
  X(orbGetPr)                       \
  X(orbGetPi)                       \
  X(orbGetData)                     \
  X(orbGetImagData)                 \
  X(orbGetChars)                    \
  X(orbGetLogicals)                 \
  X(orbGetString)                   \
  X(orbArrayToString)               \
  X(orbGetNumberOfFields)           \
  X(orbGetFieldNameByNumber)        \
  X(orbGetFieldNumber)              \
  X(orbGetField)                    \
  X(orbGetFieldByNumber)            \
  X(orbSetField)                    \
  X(orbSetFieldByNumber)            \
  X(orbAddField)                    \
  X(orbRemoveField)                 \
  X(orbGetCell)                     \
  X(orbSetCell)                     \
  X(orbGetIr)                       \
  X(orbGetJc)                       \
  X(orbGetNzmax)                    \
  X(orbSetNzmax)                    \
  X(orbIsDouble)                    \
  X(orbIsSingle)                    \
  X(orbIsInt8)                      \
  X(orbIsUint8)                     \
  X(orbIsInt16)                     \
  X(orbIsUint16)                    \
  X(orbIsInt32)                     \
  X(orbIsUint32)                    \
  X(orbIsInt64)                     \
  X(orbIsUint64)                    \
  X(orbIsNumeric)                   \
  X(orbIsLogical)                   \
  X(orbIsChar)                      \
  X(orbIsStruct)                    \
  X(orbIsCell)                      \
  X(orbIsSparse)                    \
  X(orbIsLogicalScalar)             \
  X(orbIsLogicalScalarTrue)         \
  X(orbIsEmpty)                     \
  X(orbIsClass)

#define ORB_MODEL_RUNTIME_FUNCTIONS(X) \
  X(orbInitializeEx)                   \
  X(orbInitialize)                     \
  X(orbTerminate)                      \
  X(orbGetInitializationErrorMessage)  \
  X(createConfig)                      \
  X(destroyConfig)                     \
  X(setTimeoutSec)                     \
  X(getTimeoutSec)                     \
  X(setResponseSizeLimit)              \
  X(getResponseSizeLimit)              \
  X(createContext)                     \
  X(destroyContext)                    \
  X(getLastErrorInfo)                  \
  X(destroyLastErrorInfo)              \
  X(feval)                             \
  X(setClientCertFile)                 \
  X(getClientCertFile)                 \
  X(setClientPrivateKeyFile)           \
  X(getClientPrivateKeyFile)           \
  X(setClientPrivateKeyPassword)       \
  X(getClientPrivateKeyPassword)       \
  X(setServerCertFile)                 \
  X(getServerCertFile)                 \
  X(setCRLFile)                        \
  X(getCRLFile)                        \
  X(setVerifyHost)                     \
  X(getVerifyHost)                     \
  X(setVerifyPeer)                     \
  X(getVerifyPeer)

namespace orb::model {

#define ORB_MODEL_ENUMERATOR(name) name,
enum class Function : size_t {
  ORB_MODEL_FUNCTIONS(ORB_MODEL_ENUMERATOR)
      ORB_MODEL_RUNTIME_FUNCTIONS(ORB_MODEL_ENUMERATOR)
};
#undef ORB_MODEL_ENUMERATOR

#define ORB_MODEL_NAME(name) #name,
inline constexpr std::array kFunctionNames = {
    ORB_MODEL_FUNCTIONS(ORB_MODEL_NAME) ORB_MODEL_RUNTIME_FUNCTIONS(ORB_MODEL_NAME)};
#undef ORB_MODEL_NAME
static_assert(kFunctionNames.size() == 80 + 25,
              "every exported function and every member of the table has a row");

inline const char* nameOf(Function function) {
  return kFunctionNames[static_cast<size_t>(function)];
}

/// Counts the calls of each function that did more than refuse.
class Tally {
 public:
  void add(Function function, bool effective) {
    if (effective) ++counts_[static_cast<size_t>(function)];
  }
  uint64_t of(Function function) const { return counts_[static_cast<size_t>(function)]; }
  void addSequence() { ++sequences_; }
  uint64_t sequences() const { return sequences_; }

 private:
  std::array<uint64_t, kFunctionNames.size()> counts_{};
  uint64_t sequences_ = 0;
};

}  // namespace orb::model

#endif  // ORB_CLIENT_MODEL_FUNCTIONS_H_
