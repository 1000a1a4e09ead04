// What the pages of the wizard share: raising their events, the texts that they put
// together, and what they ask the product table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <unordered_set>

// Calls an event's handler; nothing happens where nobody has set one.
template <class... Parameters, class... Arguments>
void RaiseEvent(const std::function<void(Parameters...)>& vEvent, const Arguments&... vArguments) {
  if (vEvent) vEvent(vArguments...);
}

// The tool tip of this number in one line: without the marks "\n" that break it in other windows.
std::wstring ToolTipText(std::int32_t vNumber);

// A status line: what the step is about, a blank, and what to click to go on.
std::wstring StepText(const std::wstring& vAbout);

// The key of the list item that shows the update at this position, from 1, of its collection; and
// from a key back to the position, from 0.
std::wstring ListKey(std::size_t vPosition);
std::size_t PositionOf(const std::wstring& vListKey);

// A supplier and an assortment as one text to compare: in upper case, with "-" between.
std::wstring PairOf(const std::wstring& vSupplierCode, const std::wstring& vAssortmentCode);

// The pairs of supplier and assortment that belong together in the product table at `vPath`. None,
// after its message, when OpenProductTable refuses it; throws text::RuntimeError when it cannot be
// read. The product table is released in every case.
std::unordered_set<std::wstring> ReadPairs(const std::wstring& vPath);
