// SPDX-License-Identifier: MIT
#include "array/received_array.h"

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/repeated_field.h>
#include <sys/mman.h>

#include <boost/make_shared.hpp>
#include <cstring>
#include <utility>

#include "array/canonical_form.h"
#include "array/orb_array_from_kaldex_array_factory.h"
#include "array/packed_varints.h"

namespace orb {
namespace {

using wire::Slice;

// Lists of this size are worth pages of 2 MiB.
constexpr size_t kHugeBytes = size_t{4} << 20;

/// Where the system has the choice, it backs fresh memory with huge pages: faulting in 50
/// MB in small ones takes longer than copying them.
void preferHugePages(void* start, size_t size) {
  constexpr uintptr_t kPage = 4096;
  const uintptr_t inPage = reinterpret_cast<uintptr_t>(start) % kPage;
  // A refusal costs speed alone.
  madvise(static_cast<char*>(start) - inPage, inPage + size, MADV_HUGEPAGE);
}

/// Reads one array of a type known at compile time.
class WireArrayReader {
 public:
  explicit WireArrayReader(Slice bytes) : bytes_(bytes) {}

  template <QXType T>
  void visit() {
    if constexpr (kIsNative16<T>) {
      readNative<T>();
    } else if constexpr (kIsContainer<T>) {
      readContainer<T>();
    } else if constexpr (kIsFixedWidth<T>) {
      if (!isHuge() || !readStored<T>()) readMessage<T>();
    } else {
      readMessage<T>();
    }
  }

  UniqueHandle takeHandle() { return std::move(handle_); }

 private:
  // An array is one message inside the reply's, and may be that much less deep.
  static constexpr int kDepthLeft = 99;

  template <QXType T>
  void readMessage() {
    google::protobuf::io::CodedInputStream input(bytes_.data,
                                                 static_cast<int>(bytes_.size));
    input.SetRecursionLimit(kDepthLeft);
    auto message = boost::make_shared<KALDEX_Array>();
    const bool parsed =
        message->ParseFromCodedStream(&input) && input.ConsumedEntireMessage();
    // The last of several types counts, and may be one that nobody can hold.
    if (parsed && message->type() == T) {
      handle_ = handleOver(std::move(message), MessageUse::kOwn);
    }
  }

  bool isHuge() const { return bytes_.size >= kHugeBytes; }

  /// Reads lists into memory that the message library would ask for in small pages.
  template <QXType T>
  bool readStored() {
    Slice payload{};
    SharedMessage message = readUpToPayload<T>(payload);
    // Without a payload, reading lists would give the message an empty one.
    if (!message || payload.size == 0) return false;
    auto& lists = Payload<T>::in(*message);
    wire::Reader reader(payload);
    if (!readStoredField(1, reader, *lists.mutable_elements())) return false;
    if (!readStoredField(2, reader, *lists.mutable_imag_elements())) return false;
    if (!reader.atEnd()) return false;
    handle_ = handleOver(std::move(message), MessageUse::kOwn);
    return true;
  }

  template <class Element>
  static bool readStoredField(int field, wire::Reader& reader,
                              google::protobuf::RepeatedField<Element>& elements) {
    Slice bytes{};
    if (!readFieldIfNext(field, reader, bytes)) return false;
    if (bytes.size == 0) return true;
    if (bytes.size % sizeof(Element) != 0) return false;
    const auto count = static_cast<int>(bytes.size / sizeof(Element));
    elements.Reserve(count);
    Element* const target = elements.AddNAlreadyReserved(count);
    preferHugePages(target, bytes.size);
    std::memcpy(target, bytes.data, bytes.size);
    return true;
  }

  template <QXType T>
  void readNative() {
    using Elements = std::vector<NativeElement<T>>;
    Slice payload{};
    SharedMessage message = readUpToPayload<T>(payload);
    Elements real;
    Elements imag;
    wire::Reader reader(payload);
    if (!message || !readPackedField(1, reader, real)) return;
    if (kIsNumeric<T> && !readPackedField(2, reader, imag)) return;
    if (reader.atEnd()) place<T>(std::move(message), std::move(real), std::move(imag));
  }

  template <QXType T>
  void readContainer() {
    Slice payload{};
    SharedMessage message = readUpToPayload<T>(payload);
    if (!message) return;
    const uint8_t* elementsStart = payload.data;
    std::vector<PendingElements::Place> places;
    wire::Reader reader(payload);
    while (!reader.atEnd()) {
      const bool isName = T == KALDEX_Array::STRUCT && places.empty() &&
                          *reader.position() == wire::tagOf(1, wire::kLengthDelimited);
      Slice part{};
      if (!readField(isName ? 1 : kElementsField<T>, reader, part)) return;
      if (isName) {
        elementsStart = reader.position();
      } else {
        if (!wire::isCanonicalArray(part)) return;
        places.push_back({static_cast<uint32_t>(part.data - elementsStart),
                          static_cast<uint32_t>(part.size)});
      }
    }
    const Slice names{payload.data, static_cast<size_t>(elementsStart - payload.data)};
    if (names.size != 0 && !parse(names, Payload<T>::in(*message))) return;
    const Slice rest{elementsStart, payload.size - names.size};
    Elements elements(places.size());
    place<T>(std::move(message), std::move(elements),
             PendingElements(rest, std::move(places)));
  }

  template <QXType T>
  static constexpr int kElementsField = T == KALDEX_Array::STRUCT ? 2 : 1;

  /// Splits the array in front of the payload of T, which comes last in what the message
  /// library writes, and gives the message of what is before; null when there is anything
  /// else.
  template <QXType T>
  SharedMessage readUpToPayload(Slice& payload) const {
    wire::Reader reader(bytes_);
    Slice before{};
    if (!wire::readCanonicalFieldsBelow(kPayloadField<T>, reader)) return nullptr;
    before = {bytes_.data, static_cast<size_t>(reader.position() - bytes_.data)};
    payload = {reader.position(), 0};
    if (!reader.atEnd() && !readField(kPayloadField<T>, reader, payload)) return nullptr;
    if (!reader.atEnd()) return nullptr;
    auto message = boost::make_shared<KALDEX_Array>();
    return parse(before, *message) ? message : nullptr;
  }

  static bool parse(Slice bytes, google::protobuf::MessageLite& message) {
    return message.ParseFromArray(bytes.data, static_cast<int>(bytes.size));
  }

  /// Reads a length-delimited field, which must come next.
  static bool readField(int field, wire::Reader& reader, Slice& bytes) {
    uint64_t tag = 0;
    return reader.readVarint(tag) && tag == wire::tagOf(field, wire::kLengthDelimited) &&
           reader.readLengthDelimited(bytes);
  }

  /// Reads a length-delimited field, or no bytes when it does not come next.
  static bool readFieldIfNext(int field, wire::Reader& reader, Slice& bytes) {
    const bool isNext = !reader.atEnd() &&
                        *reader.position() == wire::tagOf(field, wire::kLengthDelimited);
    return !isNext || readField(field, reader, bytes);
  }

  /// Reads the elements of a packed field.
  template <class Native>
  static bool readPackedField(int field, wire::Reader& reader,
                              std::vector<Native>& elements) {
    Slice bytes{};
    return readFieldIfNext(field, reader, bytes) && wire::readPacked(bytes, elements);
  }

  template <QXType T, class... Parts>
  void place(SharedMessage message, Parts&&... parts) {
    auto handle = std::make_unique<orbArrayHandle>();
    handle->proxy =
        std::make_unique<ProxyOf<T>>(std::move(message), std::forward<Parts>(parts)...);
    handle_ = std::move(handle);
  }

  Slice bytes_;
  UniqueHandle handle_;
};

}  // namespace

UniqueHandle handleFromWire(Slice bytes) {
  wire::Reader reader(bytes);
  uint64_t tag = 0;
  uint64_t type = 0;
  const bool hasType =
      reader.readVarint(tag) &&
      tag == wire::tagOf(KALDEX_Array::kTypeFieldNumber, wire::kVarint) &&
      reader.readVarint(type) && type <= KALDEX_Array::SPARSE;
  if (!hasType) return nullptr;
  WireArrayReader array(bytes);
  dispatch_on_QXType(static_cast<QXType>(type), array);
  return array.takeHandle();
}

}  // namespace orb
