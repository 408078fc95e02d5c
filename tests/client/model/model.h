// SPDX-License-Identifier: MIT
// The rules of the exported array functions, written a second time and plainly.
//
// Each function has the name and the arguments of the exported one, with a handle type of
// its own: code templated on the handle reaches either through argument-dependent lookup.
#ifndef ORB_CLIENT_MODEL_MODEL_H_
#define ORB_CLIENT_MODEL_MODEL_H_

#include <orb/qxorbclient.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orb::model {

/// The most elements that an array may be resized to.
inline constexpr size_t kMaxElements = 2147483647;

/// Elements one after the other in their C type.
using Bytes = std::vector<unsigned char>;

/// What all handles of one array share, and what a copy starts from.
struct Message {
  orbClassID classid = orbDOUBLE_CLASS;  // of the values, when sparse
  bool sparse = false;
  std::vector<size_t> dimensions;
  Bytes real;  // values of all classes but struct and cell
  Bytes imag;
  std::vector<size_t> ir;
  std::vector<size_t> jc;
  std::vector<std::string> fieldNames;
  std::vector<Message> elements;  // of structs and cells, as last written back
};

/// One handle. Its own views of the elements are taken when it is made.
struct Array {
  explicit Array(std::shared_ptr<Message> viewed);

  std::shared_ptr<Message> message;
  bool complex;
  Bytes real;  // native buffers of char and 16-bit arrays
  Bytes imag;
  std::vector<std::shared_ptr<Message>> elements;  // never null
};

/// Thrown where the exported functions throw boost::numeric::positive_overflow.
struct PositiveOverflow {};

size_t product(const std::vector<size_t>& dimensions);

/// The extents that the functions make of a list of any length.
std::vector<size_t> normalised(const std::vector<size_t>& list);

bool isContainer(orbClassID classid);

/// The values that a data pointer of this handle leads to.
Bytes& realPart(Array& a);
Bytes& imagPart(Array& a);

/// The text of a char array in UTF-8; nothing for other classes, for an array without
/// elements, and when the last unit is a surrogate.
std::optional<std::string> utf8Of(const Array& a);

/// The number of arrays that a deep copy consists of.
size_t weight(const Array& a);

Array* orbCreateNumericArray(size_t ndim, const size_t* dims, orbClassID classid,
                             orbComplexity flag);
Array* orbCreateNumericMatrix(size_t m, size_t n, orbClassID classid, orbComplexity flag);
Array* orbCreateDoubleMatrix(size_t m, size_t n, orbComplexity flag);
Array* orbCreateDoubleScalar(double value);
Array* orbCreateLogicalArray(size_t ndim, const size_t* dims);
Array* orbCreateLogicalMatrix(size_t m, size_t n);
Array* orbCreateLogicalScalar(bool value);
Array* orbCreateCharArray(size_t ndim, const size_t* dims);
Array* orbCreateString(const char* str);
Array* orbCreateCharMatrixFromStrings(size_t m, const char** str);
Array* orbCreateCellArray(size_t ndim, const size_t* dims);
Array* orbCreateCellMatrix(size_t m, size_t n);
Array* orbCreateStructArray(size_t ndim, const size_t* dims, int nfields,
                            const char** fieldnames);
Array* orbCreateStructMatrix(size_t m, size_t n, int nfields, const char** fieldnames);
Array* orbCreateSparse(size_t m, size_t n, size_t nzmax, orbComplexity flag);
Array* orbCreateSparseLogicalMatrix(size_t m, size_t n, size_t nzmax);

void orbDestroyArray(Array* a);
Array* orbDuplicateArray(Array* a);
void orbFree(void* p);
orbClassID orbGetClassID(const Array* a);
const char* orbGetClassName(const Array* a);
bool orbIsComplex(const Array* a);
size_t orbGetElementSize(const Array* a);

size_t orbGetNumberOfDimensions(const Array* a);
const size_t* orbGetDimensions(const Array* a);
size_t orbGetNumberOfElements(const Array* a);
size_t orbCalcSingleSubscript(const Array* a, size_t nsubs, const size_t* subs);
size_t orbGetM(const Array* a);
size_t orbGetN(const Array* a);
void orbSetM(Array* a, size_t m);
void orbSetN(Array* a, size_t n);
int orbSetDimensions(Array* a, const size_t* dims, size_t ndim);
double orbGetScalar(Array* a);
double* orbGetPr(Array* a);
double* orbGetPi(Array* a);
void* orbGetData(Array* a);
void* orbGetImagData(Array* a);
char16_t* orbGetChars(Array* a);
bool* orbGetLogicals(Array* a);
int orbGetString(Array* a, char* buf, size_t buflen);
char* orbArrayToString(Array* a);

int orbGetNumberOfFields(const Array* a);
const char* orbGetFieldNameByNumber(const Array* a, int n);
int orbGetFieldNumber(const Array* a, const char* name);
Array* orbGetField(Array* a, size_t index, const char* name);
Array* orbGetFieldByNumber(Array* a, size_t index, int n);
void orbSetField(Array* a, size_t index, const char* name, Array* value);
void orbSetFieldByNumber(Array* a, size_t index, int n, Array* value);
int orbAddField(Array* a, const char* name);
void orbRemoveField(Array* a, int n);
Array* orbGetCell(Array* a, size_t index);
void orbSetCell(Array* a, size_t index, Array* value);
size_t* orbGetIr(Array* a);
size_t* orbGetJc(Array* a);
size_t orbGetNzmax(const Array* a);
void orbSetNzmax(Array* a, size_t nzmax);

bool orbIsDouble(const Array* a);
bool orbIsSingle(const Array* a);
bool orbIsInt8(const Array* a);
bool orbIsUint8(const Array* a);
bool orbIsInt16(const Array* a);
bool orbIsUint16(const Array* a);
bool orbIsInt32(const Array* a);
bool orbIsUint32(const Array* a);
bool orbIsInt64(const Array* a);
bool orbIsUint64(const Array* a);
bool orbIsNumeric(const Array* a);
bool orbIsLogical(const Array* a);
bool orbIsChar(const Array* a);
bool orbIsStruct(const Array* a);
bool orbIsCell(const Array* a);
bool orbIsSparse(const Array* a);
bool orbIsLogicalScalar(const Array* a);
bool orbIsLogicalScalarTrue(Array* a);
bool orbIsEmpty(const Array* a);
bool orbIsClass(const Array* a, const char* name);

}  // namespace orb::model

#endif  // ORB_CLIENT_MODEL_MODEL_H_
