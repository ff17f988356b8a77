// The record's text buffers as seen by the text writers: textBufferA for char
// text, textBufferW for char16_t text.  A writer sizes the buffer once from an
// upper bound, writes the text somewhere inside it and hands out a pointer to
// its first character; the text lives until the number changes, the next text
// call of the same width or freeStrBuffer.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "frame/number_record.h"
#include "text/text_format.h"

namespace tw::text {

template <class Char>
std::unique_ptr<std::basic_string<Char>>& textBufferSlot(NumberRecord& record) {
    if constexpr (std::is_same_v<Char, char>)
        return record.textBufferA;
    else
        return record.textBufferW;
}

// Empties the buffer of this width (keeping its capacity, creating it on first
// use) and gives it `size` characters of unspecified content.  Throws
// std::bad_alloc when it cannot grow (the call frame records -3); the buffer
// is then empty.
template <class Char>
Char* sizeTextBuffer(NumberRecord& record, std::size_t size);

// Empties the buffer of this width, if there is one.
template <class Char>
void emptyTextBuffer(NumberRecord& record);

// The answer of a call stopped by the terminate flag: the buffer of this width
// emptied and no text.
template <class Char>
TextView<Char> stoppedText(NumberRecord& record) {
    emptyTextBuffer<Char>(record);
    return {};
}

// The text "0" in the buffer of this width.
template <class Char>
TextView<Char> zeroText(NumberRecord& record);

// Takes both text buffers out of a record, as dropTextBuffers does, but keeps
// them alive while it exists: a number may be set from its own text.
class DetachedTextBuffers {
public:
    explicit DetachedTextBuffers(NumberRecord& record)
        : narrow_(std::move(record.textBufferA)), wide_(std::move(record.textBufferW)) {}

private:
    std::unique_ptr<std::string> narrow_;
    std::unique_ptr<std::u16string> wide_;
};

// Test seam: buffers of more characters than this fail as if memory were exhausted.
void setTextAllocationCeilingForTesting(std::size_t characters);

}  // namespace tw::text
