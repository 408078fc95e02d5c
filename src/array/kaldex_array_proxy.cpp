// SPDX-License-Identifier: MIT
#include "array/kaldex_array_proxy.h"

#include <boost/make_shared.hpp>
#include <utility>

#include "array/array_attributes_retriever.h"
#include "array/data_accessor.h"
#include "array/proto_extension_resizer.h"
#include "orb/dispatch_on_QXType"

namespace orb {
namespace {

OrbArrayAttributesRetriever attributesOf(const KALDEX_Array& message) {
  OrbArrayAttributesRetriever attributes(message);
  dispatch_on_QXType(message.type(), attributes);
  return attributes;
}

DataAccessor dataOf(KALDEX_Array& message, bool isComplex) {
  DataAccessor accessor(message, isComplex);
  dispatch_on_QXType(message.type(), accessor);
  return accessor;
}

}  // namespace

KALDEXArrayProxy::KALDEXArrayProxy(SharedMessage message)
    : message_(std::move(message)), isComplex_(attributesOf(*message_).isComplex) {}

void KALDEXArrayProxy::resize(int32_t count) {
  ProtoExtensionResizer resizer(*message_, count);
  dispatch_on_QXType(type(), resizer);
}

size_t KALDEXArrayProxy::getElementSize() const {
  return attributesOf(*message_).elementSize;
}

void* KALDEXArrayProxy::getData() { return dataOf(*message_, isComplex_).realPointer; }

void* KALDEXArrayProxy::getImagData() {
  return dataOf(*message_, isComplex_).imagPointer;
}

double KALDEXArrayProxy::getScalar() { return dataOf(*message_, isComplex_).scalar; }

std::unique_ptr<KALDEXArrayProxy> KALDEXArrayProxy::duplicate() {
  flushToMessage();
  return std::make_unique<KALDEXArrayProxy>(copyOf(*message_));
}

WireSizes KALDEXArrayProxy::measureWire() const { return measureMessage(*message_); }

void KALDEXArrayProxy::writeWire(const WireSizes&, wire::MessagePieces& pieces) const {
  writeMessage(*message_, pieces);
}

}  // namespace orb
