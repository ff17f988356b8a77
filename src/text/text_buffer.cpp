#include "text/text_buffer.h"

#include <limits>
#include <new>

namespace tw::text {

namespace {
std::size_t textAllocationCeiling = std::numeric_limits<std::size_t>::max();
}  // namespace

void setTextAllocationCeilingForTesting(std::size_t characters) { textAllocationCeiling = characters; }

template <class Char>
Char* sizeTextBuffer(NumberRecord& record, std::size_t size) {
    auto& slot = textBufferSlot<Char>(record);
    if (!slot) slot = std::make_unique<std::basic_string<Char>>();
    slot->clear();
    if (size > textAllocationCeiling) throw std::bad_alloc();
    slot->resize(size);
    return slot->data();
}

template <class Char>
void emptyTextBuffer(NumberRecord& record) {
    if (auto& slot = textBufferSlot<Char>(record)) slot->clear();
}

template <class Char>
TextView<Char> zeroText(NumberRecord& record) {
    Char* text = sizeTextBuffer<Char>(record, 2);
    text[0] = Char('0');
    text[1] = Char(0);
    return TextView<Char>(text, 1);
}

#define TW_TEXT_BUFFER_FOR(Char)                                           \
    template Char* sizeTextBuffer<Char>(NumberRecord&, std::size_t);       \
    template void emptyTextBuffer<Char>(NumberRecord&);                    \
    template TextView<Char> zeroText<Char>(NumberRecord&);
TW_TEXT_BUFFER_FOR(char)
TW_TEXT_BUFFER_FOR(char16_t)
#undef TW_TEXT_BUFFER_FOR

}  // namespace tw::text
