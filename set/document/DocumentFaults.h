// Faults that tests ask for: what a set that runs out of memory meets by chance. They hold for every
// document of the process and may be set from any thread.
#pragma once

#include <cstddef>

namespace epgset {

inline constexpr std::size_t defaultDocumentByteBudget = 64U * 1024 * 1024;

/// Lets `successes` more documents and objects be made and then none; negative: no fault, as at the start.
void failDocumentObjectsAfter(int successes) noexcept;

/// Lets every printing fail, or ends that.
void failDocumentPrinting(bool fail) noexcept;

/// Sets the bytes beyond which a document gives no further objects.
void setDocumentByteBudget(std::size_t bytes) noexcept;

/// Counts one document or object that is about to be made; false when it is to fail.
bool mayMakeDocumentObject() noexcept;

bool isDocumentPrintingFailing() noexcept;

std::size_t documentByteBudget() noexcept;

}  // namespace epgset
