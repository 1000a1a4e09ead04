// Fixture of the tests with real windows: a form on a display, and a user's hands.
#pragma once

#include <gtest/gtest.h>
#include <wx/listctrl.h>
#include <wx/window.h>

#include <functional>
#include <initializer_list>
#include <vector>

#include "platform/controls/form.h"
#include "platform/controls/layout.h"
#include "platform/wx/form_frame.h"
#include "platform/wx/window_system.h"

// A page with whatever controls a test needs.
class TestPage final : public controls::Page {
 public:
  controls::Layout arrangement;

  void Hold(std::initializer_list<controls::Control*> parts) { Contain(parts); }
  controls::Layout Arrangement() override { return arrangement; }
};

// A wizard of one page and two buttons.
class TestForm final : public controls::Form {
 public:
  TestForm();

  controls::Label title;
  TestPage page;
  controls::Button next;
  controls::Button cancel;

  std::vector<controls::AnyControl> Controls() override { return {&title, &page, &next, &cancel}; }
  controls::Button* DefaultButton() override { return &next; }
  controls::Button* CancelButton() override { return &cancel; }
};

class WindowTest : public testing::Test {
 protected:
  struct Ended {};  // what ends the work in hand

  WindowTest();

  // Shows the form and lets the user do something; the form is unloaded then, unless it is already.
  // Returns the exit status of the program.
  int Run(const std::function<void()>& user);

  // Handles events until this is true, but not for ever.
  static bool Wait(const std::function<bool()>& condition);
  // Handles events until nothing more comes of them.
  static void Settle();

  wx_windows::FormFrame& Frame() const;
  template <class Native>
  Native& WindowOf(const controls::Control& control) const {
    auto* const native = dynamic_cast<Native*>(Frame().WindowOf(control));
    if (native == nullptr) throw std::logic_error("the control has no such window");
    return *native;
  }
  wxListCtrl& NativeList(const controls::ListView& list) const;

  // The windows come to a display of another scale, as the toolkit tells them.
  void ChangeScale() const;

  // The user's hands. `at`: where in the window, or in its middle.
  static void Click(const wxWindow& window, wxPoint at = wxDefaultPosition);
  static void DoubleClick(const wxWindow& window);
  static void Key(int key, int modifiers = 0);
  // Long enough for the key to repeat itself.
  static void Hold(int key);
  static void TypeText(const char* text);

  TestForm form;
  wx_windows::WindowSystem windows;
  int reported = 0;  // errors
};
