// SPDX-License-Identifier: MIT
#ifndef ORB_ARRAY_KALDEX_ARRAY_PROXY_H_
#define ORB_ARRAY_KALDEX_ARRAY_PROXY_H_

#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "array/message_wire.h"
#include "array/payload.h"

namespace orb {

using SharedMessage = boost::shared_ptr<KALDEX_Array>;

/// What a struct or cell array may do with the message that its proxy is built over.
enum class MessageUse {
  kShare,  // others see it too: only look
  kOwn,    // nobody else ever saw it: the elements may be taken over
};

/// How an array goes into a call.
enum class Sending {
  kAsStored,       // the message is up to date
  kWrittenBack,    // others see the message: written back and sent as it is
  kDirect,         // written without the message
  kDirectIfAlone,  // the same, unless the call writes others back: they may be elements
};

/// The array behind a handle: views one message, which other proxies may view too. By
/// itself it serves the types whose elements callers reach in the message; subclasses add
/// native elements, read when the proxy is built and written back by flushToMessage().
class KALDEXArrayProxy : boost::noncopyable {
 public:
  /// Throws std::invalid_argument, "dispatch_on_QXType", for a type that cannot be
  /// viewed.
  explicit KALDEXArrayProxy(SharedMessage message);
  virtual ~KALDEXArrayProxy() = default;

  /// Changes the number of elements, after the dimensions were changed.
  virtual void resize(int32_t count);
  /// Bytes of one element that getData() points at.
  virtual size_t getElementSize() const;
  /// The first element, null when there is none; the payload becomes present in the
  /// message.
  virtual void* getData();
  virtual void* getImagData();
  /// The real part of the first element, 0.0 when there is none.
  virtual double getScalar();
  /// Writes native elements back into the message.
  virtual void flushToMessage() {}
  /// A proxy over a copy of the message, written back before.
  virtual std::unique_ptr<KALDEXArrayProxy> duplicate();

  /// What a call does with this array. Where nobody else can see the message, writing
  /// back would be work for nothing: the wire form is then written from the native
  /// elements.
  virtual Sending sending() { return Sending::kAsStored; }
  /// Measures the wire form, here that of the message; then writeWire() may run.
  virtual WireSizes measureWire() const;
  /// Writes the wire form that was measured.
  virtual void writeWire(const WireSizes& sizes, wire::MessagePieces& pieces) const;

  QXType type() const { return message_->type(); }
  bool isComplex() const { return isComplex_; }
  /// A creator's word: of a sparse array the stored values do not tell.
  void setComplex(bool isComplex) { isComplex_ = isComplex; }
  KALDEX_Array& message() { return *message_; }
  const KALDEX_Array& message() const { return *message_; }
  const SharedMessage& sharedMessage() const { return message_; }

 private:
  SharedMessage message_;  // never null
  bool isComplex_;         // as the message was when the proxy was built
};

}  // namespace orb

#endif  // ORB_ARRAY_KALDEX_ARRAY_PROXY_H_
