// Message boxes and the file dialog.
#include "platform/wx/dialogs.h"

#include <wx/app.h>
#include <wx/button.h>
#include <wx/dcclient.h>
#include <wx/dialog.h>
#include <wx/display.h>
#include <wx/filedlg.h>
#include <wx/filename.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>
#include <wx/stockitem.h>
#include <wx/textctrl.h>
#include <wx/tokenzr.h>
#include <wx/utils.h>

#include <algorithm>

#include "platform/text/runtime_error.h"
#include "platform/text/strings.h"
#include "platform/wx/clipboard.h"
#include "platform/wx/conversion.h"
#include "platform/wx/event_pump.h"
#include "platform/wx/message_picture.h"

namespace wx_windows {
namespace {

// A text with more characters, or one that becomes higher, is scrolled.
constexpr std::size_t kMostCharacters = 1500;
constexpr int kHighestText = 420;

// In pixels at the normal scale.
constexpr int kTextWidth = 440;
constexpr int kScrolledHeight = 280;
constexpr int kMargin = 16;
constexpr int kGap = 8;

// A dialog over a window that is hidden would be hidden itself.
wxWindow* DialogParent() {
  wxWindow* const top = wxTheApp->GetTopWindow();
  return top != nullptr && top->IsShown() ? top : nullptr;
}

// The text with line ends in those words that are wider than this in the window, as long paths
// are: after a separator where one is near.
wxString BreakLongWords(wxWindow& window, const wxString& text, int width) {
  const wxClientDC dc(&window);
  wxString broken;
  wxStringTokenizer words(text, " \n", wxTOKEN_RET_EMPTY_ALL);
  while (words.HasMoreTokens()) {
    wxString word = words.GetNextToken();
    wxArrayInt ends;
    while (dc.GetTextExtent(word).x > width && dc.GetPartialTextExtents(word, ends)) {
      const auto over = std::upper_bound(ends.begin(), ends.end(), width);
      const auto most = std::max<std::size_t>(1, static_cast<std::size_t>(over - ends.begin()));
      const std::size_t separator = word.find_last_of("/\\", most - 1);
      const bool close_by = separator != wxString::npos && separator >= most / 2;
      const std::size_t piece = close_by ? separator + 1 : most;
      broken += word.substr(0, piece) + '\n';
      word.erase(0, piece);
    }
    broken += word;
    if (words.GetLastDelimiter() != 0) broken += words.GetLastDelimiter();
  }
  return broken;
}

// A picture, a text and buttons. The toolkit's own message box leaves the picture away on some
// systems, and grows over the edges of the screen with a long text.
class MessageBox final : public wxDialog {
 public:
  MessageBox(const std::wstring& text, const std::wstring& caption, MessageKind kind)
      : wxDialog(DialogParent(), wxID_ANY, ToToolkit(caption)), kind_(kind) {
    auto* const message = new wxBoxSizer(wxHORIZONTAL);
    const int margin = FromDIP(kMargin);
    message->Add(new wxStaticBitmap(this, wxID_ANY, MessagePicture(kind, *this)),
                 wxSizerFlags().Border(wxRIGHT, margin));
    message->Add(MakeText(text), wxSizerFlags(1).CentreVertical());
    auto* const whole = new wxBoxSizer(wxVERTICAL);
    whole->Add(message, wxSizerFlags().Expand().Border(wxALL, margin));
    whole->Add(buttons_, wxSizerFlags().Right().Border(wxLEFT | wxRIGHT | wxBOTTOM, margin));
    SetSizer(whole);
    Bind(wxEVT_CHAR_HOOK, [this, whole_text = caption + L"\r\n\r\n" + text](wxKeyEvent& event) {
      const bool copies = event.GetKeyCode() == 'C' && event.GetModifiers() == wxMOD_CONTROL;
      if (copies && !SomeTextIsSelected()) {
        CopyText(whole_text);
      } else {
        event.Skip();
      }
    });
  }

  // Answers with `id`. The button is the one that Enter presses, unless another one comes later.
  void AddButton(int id, const std::wstring& label) {
    const wxString shown = label.empty() ? wxGetStockLabel(id) : ToToolkit(label);
    button_ = new wxButton(this, id, shown);
    button_->Bind(wxEVT_BUTTON, [this, id](wxCommandEvent&) { EndModal(id); });
    const int gap = buttons_->IsEmpty() ? 0 : FromDIP(kGap);
    buttons_->Add(button_, wxSizerFlags().Border(wxLEFT, gap));
  }

  // `escape`: the answer of Escape and of the close box.
  int Ask(int escape) {
    SetEscapeId(escape);
    Fit();
    wxSize size = GetSize();
    size.DecTo(wxDisplay(this).GetClientArea().GetSize());
    SetSize(size);
    CentreOnParent();
    button_->SetDefault();
    button_->SetFocus();
    SoundMessage(kind_);
    return ShowModal();
  }

 private:
  // In a text that is scrolled, where the system copies that.
  static bool SomeTextIsSelected() {
    const auto* const text = dynamic_cast<wxTextCtrl*>(FindFocus());
    return text != nullptr && !text->GetStringSelection().empty();
  }

  // For those who pass the message on. If another program does not let go of the clipboard, a
  // message about that over this one would help nobody.
  static void CopyText(const std::wstring& text) {
    try {
      Clipboard().SetText(text);
    } catch (const text::RuntimeError&) {
      wxBell();
    }
  }

  wxWindow* MakeText(const std::wstring& text) {
    const wxString shown = ToToolkit(text);
    const int width = FromDIP(kTextWidth);
    if (text.size() <= kMostCharacters) {
      const wxString lines = BreakLongWords(*this, shown, width);
      auto* const label = new wxStaticText(this, wxID_ANY, wxControl::EscapeMnemonics(lines));
      label->Wrap(width);
      if (label->GetBestSize().y <= FromDIP(kHighestText)) return label;
      label->Destroy();
    }
    return new wxTextCtrl(this, wxID_ANY, shown, wxDefaultPosition,
                          wxSize(width, FromDIP(kScrolledHeight)), wxTE_MULTILINE | wxTE_READONLY);
  }

  const MessageKind kind_;
  wxBoxSizer* buttons_ = new wxBoxSizer(wxHORIZONTAL);
  wxButton* button_ = nullptr;
};

// A filter that the toolkit does not understand offers every file.
wxString Wildcard(const std::wstring& filter) {
  const auto marks = std::count(filter.begin(), filter.end(), L'|');
  return marks % 2 == 1 ? wxString(filter) : wxString(wxFileSelectorDefaultWildcardStr);
}

}  // namespace

void Prompt::ShowMessage(const std::wstring& text, const std::wstring& caption) {
  if (gate_.Unattended()) return;
  const WorkGate::Dialog dialog_shown(gate_);
  EndBusyCursor();
  MessageBox box(text, caption, MessageKind::kError);
  box.AddButton(wxID_OK, texts_.ok);
  box.Ask(wxID_OK);
}

bool Prompt::AskYesNo(const std::wstring& text, const std::wstring& caption) {
  if (gate_.Unattended()) return false;
  const WorkGate::Dialog dialog_shown(gate_);
  EndBusyCursor();
  MessageBox box(text, caption, MessageKind::kQuestion);
  box.AddButton(wxID_NO, texts_.no);
  box.AddButton(wxID_YES, texts_.yes);
  return box.Ask(wxID_NO) == wxID_YES;
}

void LeaveMessageBoxes() {
  for (wxWindow* const window : wxTopLevelWindows) {
    auto* const dialog = dynamic_cast<wxDialog*>(window);
    if (dialog != nullptr && dialog->IsModal()) dialog->EndModal(wxID_CANCEL);
  }
}

std::optional<std::wstring> FileDialog::ChooseFile(const Request& request) {
  wxFileName start(wxString(request.file));
  const WorkGate::Dialog dialog_shown(gate_);
  EndBusyCursor();
  while (!gate_.Unattended()) {
    wxFileDialog dialog(DialogParent(), ToToolkit(request.title), start.GetPath(),
                        start.GetFullName(), Wildcard(request.filter),
                        wxFD_OPEN | wxFD_FILE_MUST_EXIST);
    if (dialog.ShowModal() != wxID_OK) return std::nullopt;
    start.Assign(dialog.GetPath());
    const std::wstring chosen = start.GetFullPath().ToStdWstring();
    if (start.IsFileWritable()) return chosen;
    prompt_.ShowMessage(text::ReplaceAll(texts_.read_only_file, L"%s", chosen), request.title);
  }
  return std::nullopt;
}

}  // namespace wx_windows
