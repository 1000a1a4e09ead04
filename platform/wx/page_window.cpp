// Makes the windows of controls, and arranges those of a page.
#include "platform/wx/page_window.h"

#include <wx/panel.h>

#include <utility>
#include <variant>

#include "platform/wx/list_window.h"
#include "platform/wx/simple_windows.h"

namespace wx_windows {
namespace {

// In pixels at the normal scale.
constexpr int kMargin = 16;
constexpr int kGap = 10;
constexpr int kNarrowest = 40;

// A page itself has nothing to show.
class PageWindow final : public ControlWindow {
 public:
  PageWindow(controls::Page& page, wxWindow& parent, WorkGate& gate)
      : ControlWindow(page, *new wxPanel(&parent), gate) {
    ControlChanged();
  }
};

// The sizer must belong to the window. The toolkit does not scale what is between parts of a sizer.
void KeepGap(wxWindow& window, wxFlexGridSizer& sizer, const wxSize& gap) {
  window.Bind(wxEVT_DPI_CHANGED, [&window, &sizer, gap](wxDPIChangedEvent& event) {
    event.Skip();
    sizer.SetHGap(window.FromDIP(gap).x);
    sizer.SetVGap(window.FromDIP(gap).y);
  });
}

wxFlexGridSizer& NewColumn(wxWindow& window) {
  const wxSize gap(0, kGap);
  auto* const column = new wxFlexGridSizer(1, window.FromDIP(gap));
  column->AddGrowableCol(0);
  KeepGap(window, *column, gap);
  return *column;
}

// Such a control would look odd with its focus drawn around all the room that it has.
bool HasFocusAroundText(const controls::Layout& part) {
  return part.kind == controls::Layout::Kind::kControl &&
         (std::holds_alternative<controls::CheckBox*>(part.control) ||
          std::holds_alternative<controls::OptionButton*>(part.control));
}

}  // namespace

template <class Window, class... Arguments>
Window& ControlWindows::Add(Arguments&&... arguments) {
  auto window = std::make_unique<Window>(std::forward<Arguments>(arguments)..., gate_);
  Window& made = *window;
  windows_.push_back(std::move(window));
  return made;
}

ControlWindow& ControlWindows::Make(controls::AnyControl control, wxWindow& parent) {
  struct Maker {
    ControlWindows& windows;
    wxWindow& parent;

    ControlWindow& operator()(controls::Label* label) const {
      return windows.Add<LabelWindow>(*label, parent);
    }
    ControlWindow& operator()(controls::Frame* frame) const {
      return windows.Add<FrameWindow>(*frame, parent);
    }
    ControlWindow& operator()(controls::Button* button) const {
      return windows.Add<ButtonWindow>(*button, parent);
    }
    ControlWindow& operator()(controls::CheckBox* box) const {
      return windows.Add<CheckBoxWindow>(*box, parent);
    }
    ControlWindow& operator()(controls::OptionButton* button) const {
      return windows.MakeOptionButton(*button, parent);
    }
    ControlWindow& operator()(controls::TextBox* box) const {
      return windows.Add<TextBoxWindow>(*box, parent);
    }
    ControlWindow& operator()(controls::ProgressBar* bar) const {
      return windows.Add<ProgressBarWindow>(*bar, parent);
    }
    ControlWindow& operator()(controls::ListView* list) const {
      return windows.Add<ListWindow>(*list, parent);
    }
    ControlWindow& operator()(controls::Page* page) const {
      return windows.MakePage(*page, parent);
    }
  };
  return std::visit(Maker{*this, parent}, control);
}

wxWindow* ControlWindows::Find(const controls::Control& control) const {
  for (const auto& window : windows_) {
    if (&window->Control() == &control) return &window->Window();
  }
  return nullptr;
}

ControlWindow& ControlWindows::MakeOptionButton(controls::OptionButton& button, wxWindow& parent) {
  const bool begins_group = std::exchange(last_group_, &button.Group()) != &button.Group();
  auto& window = Add<OptionButtonWindow>(button, begins_group, parent);
  window.chosen = [this] {
    for (const auto& other : windows_) other->ControlChanged();
  };
  return window;
}

ControlWindow& ControlWindows::MakePage(controls::Page& page, wxWindow& parent) {
  auto& window = Add<PageWindow>(page, parent);
  wxWindow& panel = window.Window();
  window.appeared = [this, &panel] { Appeared(panel); };
  wxFlexGridSizer& around = NewColumn(panel);
  around.AddGrowableRow(0);
  wxFlexGridSizer& column = NewColumn(panel);
  AddColumn({controls::Stretched(page.Arrangement())}, panel, column);
  around.Add(&column, wxSizerFlags().Expand().Border(wxALL, panel.FromDIP(kMargin)));
  panel.SetSizer(&around);
  panel.Layout();
  return window;
}

void ControlWindows::Appeared(wxWindow& window) const {
  if (appeared) appeared(window);
}

void ControlWindows::AddColumn(const std::vector<controls::Layout>& parts, wxWindow& parent,
                               wxFlexGridSizer& sizer) {
  for (const controls::Layout& part : parts) {
    if (part.stretch) sizer.AddGrowableRow(sizer.GetItemCount(), 1);
    const bool expand = !HasFocusAroundText(part);
    AddPart(part, parent, sizer, expand ? wxSizerFlags().Expand() : wxSizerFlags().Left(), expand);
  }
}

void ControlWindows::AddRow(const std::vector<controls::Layout>& parts, wxWindow& parent,
                            wxFlexGridSizer& sizer) {
  for (const controls::Layout& part : parts) {
    if (part.stretch) sizer.AddGrowableCol(sizer.GetItemCount(), 1);
    const wxSizerFlags flags =
        part.stretch ? wxSizerFlags().Expand() : wxSizerFlags().CentreVertical();
    AddPart(part, parent, sizer, flags, part.stretch);
  }
}

// `shrinks`: it may get less room than its contents want, in the direction that it stretches in.
void ControlWindows::AddPart(const controls::Layout& part, wxWindow& parent, wxSizer& sizer,
                             wxSizerFlags flags, bool shrinks) {
  using Kind = controls::Layout::Kind;
  switch (part.kind) {
    case Kind::kControl: {
      wxWindow& window = Make(part.control, parent).Window();
      if (shrinks) {
        window.SetMinSize(wxSize(window.FromDIP(kNarrowest), window.GetMinSize().y));
      }
      sizer.Add(&window, flags);
      break;
    }
    case Kind::kRow: {
      const wxSize gap(kGap, 0);
      auto* const row =
          new wxFlexGridSizer(static_cast<int>(part.parts.size()), parent.FromDIP(gap));
      KeepGap(parent, *row, gap);
      AddRow(part.parts, parent, *row);
      sizer.Add(row, flags);
      break;
    }
    case Kind::kColumn: {
      wxFlexGridSizer& column = NewColumn(parent);
      AddColumn(part.parts, parent, column);
      sizer.Add(&column, flags);
      break;
    }
    case Kind::kGroup:
      sizer.Add(&MakeGroup(part, parent), flags);
      break;
    case Kind::kSpace:
      sizer.Add(1, 1);  // the sizer leaves out the gap beside nothing
      break;
  }
}

wxWindow& ControlWindows::MakeGroup(const controls::Layout& group, wxWindow& parent) {
  auto& frame = Add<FrameWindow>(*std::get<controls::Frame*>(group.control), parent);
  wxWindow& panel = frame.Window();
  frame.appeared = [this, &panel] { Appeared(panel); };
  wxFlexGridSizer& column = NewColumn(panel);
  column.Add(&frame.Heading());
  AddColumn(group.parts, panel, column);
  panel.SetSizer(&column);
  return panel;
}

}  // namespace wx_windows
