// The window system of a program: its toolkit, its form and the services.
#include "platform/wx/window_system.h"

#include <wx/app.h>
#include <wx/log.h>
#include <wx/mstream.h>
#include <wx/utils.h>

#include <cstdio>
#include <utility>

#include "platform/wx/clipboard.h"
#include "platform/wx/dialogs.h"
#include "platform/wx/event_pump.h"
#include "platform/wx/form_frame.h"
#include "platform/wx/repeated_input.h"
#include "platform/wx/session_end.h"
#include "platform/wx/work_gate.h"

namespace wx_windows {
namespace {

bool IsInput(const wxEvent& event) {
  if (dynamic_cast<const wxKeyEvent*>(&event) != nullptr) return true;
  const auto* const mouse = dynamic_cast<const wxMouseEvent*>(&event);
  return mouse != nullptr && mouse->IsButton();
}

// Keeps clicks and keys from the form while the program works, before any window sees them, and
// always those that only repeat others.
class Application final : public wxApp {
 public:
  explicit Application(const WorkGate& gate) : gate_(gate) { SetExitOnFrameDelete(false); }

  // The program has no command line.
  bool OnInit() override { return true; }

  int FilterEvent(wxEvent& event) override {
    if (repeated_input_.Drops(event)) return Event_Processed;
    if (!gate_.Working() || !IsInput(event)) return Event_Skip;
    auto* const window = dynamic_cast<wxWindow*>(event.GetEventObject());
    // Not a dialog, which may well be the first window of all.
    const bool on_form =
        window != nullptr && dynamic_cast<FormFrame*>(wxGetTopLevelParent(window)) != nullptr;
    return on_form ? Event_Processed : Event_Skip;
  }

 private:
  const WorkGate& gate_;
  RepeatedInput repeated_input_;
};

// What the toolkit finds wrong with its use is for the developer, not for the user.
void TellAssertion(const wxString& file, int line, const wxString&, const wxString& condition,
                   const wxString& message) {
  std::fprintf(stderr, "%s:%d: %s %s\n", file.utf8_str().data(), line, condition.utf8_str().data(),
               message.utf8_str().data());
}

// The toolkit while it runs; false when it cannot, for want of a display.
class Toolkit {
 public:
  Toolkit(std::string name, const WorkGate& gate) : name_(std::move(name)) {
    wxSetAssertHandler(TellAssertion);
    // Scroll bars that show only under the mouse would hide that a list has more columns.
    wxSetEnv("GTK_OVERLAY_SCROLLING", "0");
    wxApp::SetInstance(new Application(gate));
    const wxLogNull quiet;
    int count = 1;
    char* arguments[] = {name_.data(), nullptr};
    started_ = wxEntryStart(count, arguments) && wxTheApp->CallOnInit();
    if (!started_) return;
    // Never a box that says it; the toolkit owns its log.
    delete wxLog::SetActiveTarget(new wxLogStderr);  // NOLINT(clang-analyzer-cplusplus*)
  }
  ~Toolkit() {
    if (started_) wxEntryCleanup();
  }
  Toolkit(const Toolkit&) = delete;
  Toolkit& operator=(const Toolkit&) = delete;

  bool Started() const { return started_; }

 private:
  std::string name_;
  bool started_ = false;
};

wxIconBundle ReadIcons(std::span<const unsigned char> bytes) {
  if (bytes.empty()) return {};
  wxImage::AddHandler(new wxICOHandler);
  // A toolkit without PNG leaves the largest one out, and windows do well without.
  const wxLogNull quiet;
  wxMemoryInputStream stream(bytes.data(), bytes.size());
  return {stream, wxBITMAP_TYPE_ICO};
}

}  // namespace

class WindowSystem::Parts {
 public:
  explicit Parts(Program of)
      : program(std::move(of)), gate(program.end_work, program.report_error) {}

  Program program;
  Texts texts;
  WorkGate gate;
  wx_windows::EventPump pump{gate};
  wx_windows::Prompt prompt{texts, gate};
  wx_windows::FileDialog file_dialog{texts, prompt, gate};
  wx_windows::Clipboard clipboard;
  FormFrame* frame = nullptr;  // while there is one

  // Nobody is asked, and dialogs that wait are left without an answer.
  void EndSession() {
    gate.EndUnattended();
    if (frame != nullptr) return frame->End();
    LeaveMessageBoxes();
  }
};

WindowSystem::WindowSystem(Program program) : parts_(std::make_unique<Parts>(std::move(program))) {}
WindowSystem::~WindowSystem() = default;

controls::Prompt& WindowSystem::Prompt() { return parts_->prompt; }
controls::FileDialog& WindowSystem::FileDialog() { return parts_->file_dialog; }
controls::Clipboard& WindowSystem::Clipboard() { return parts_->clipboard; }
controls::EventPump& WindowSystem::EventPump() { return parts_->pump; }
void WindowSystem::SetTexts(Texts texts) { parts_->texts = std::move(texts); }

void WindowSystem::Load(controls::Form& form) {
  // The toolkit owns its frames.
  auto* const frame = new FormFrame(form, parts_->gate, ReadIcons(parts_->program.icon));
  wxTheApp->SetTopWindow(frame);
  parts_->frame = frame;
  frame->gone = [this] {
    parts_->frame = nullptr;
    wxTheApp->ExitMainLoop();
  };
}

int WindowSystem::Run(const std::function<bool()>& start) {
  const Toolkit toolkit(parts_->program.name, parts_->gate);
  if (!toolkit.Started()) {
    std::fprintf(stderr, "%s: there is no display to show a window on\n",
                 parts_->program.name.c_str());
    return 1;
  }
  const SessionEnd session_end([this] { parts_->EndSession(); });
  bool started = false;
  const bool whole = parts_->gate.Work([&] { started = start(); });
  EndBusyCursor();
  if (!whole || !started) return parts_->gate.Ending() ? 0 : 1;
  // From now on: before, there was no window to click on.
  parts_->gate.drop_input = [] {
    wxTheApp->Yield(true);
    EndBusyCursor();
  };
  if (parts_->frame != nullptr) wxTheApp->OnRun();
  return 0;
}

}  // namespace wx_windows
