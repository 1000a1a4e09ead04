// What the pages of the wizard share: raising their events, and the texts that they put together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

// Calls an event's handler; nothing happens where nobody has set one.
template <class... Parameters, class... Arguments>
void RaiseEvent(const std::function<void(Parameters...)>& vEvent, const Arguments&... vArguments) {
  if (vEvent) vEvent(vArguments...);
}

// The tool tip of this number in one line: without the marks "\n" that break it in other windows.
std::wstring ToolTipText(std::int32_t vNumber);

// A status line: what the step is about, a blank, and what to click to go on.
std::wstring StepText(const std::wstring& vAbout);

// The key of the list item that shows the update at this position, from 1, of its collection.
std::wstring ListKey(std::size_t vPosition);
