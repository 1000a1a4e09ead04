// The wizard's window: its pages in their order, its buttons, its title and its status line.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/controls/form.h"
#include "wizard/usrDownload.h"
#include "wizard/usrImport.h"
#include "wizard/usrPapProcessed.h"
#include "wizard/usrSelectPap.h"
#include "wizard/usrTarget.h"
#include "wizard/usrWelkom.h"

// Walks the user through eight steps, from the welcome to the finish. The steps, what each does and
// what it leaves, are told in docs/wizard.md. Every step that opens the product table releases it
// when it is done. A failing page leaves the form in its step, with the buttons as far as it got.
//
// One thread; the steps call DoEvents, and pass on what it throws to end the process.
class frmOrvPap final : public controls::Form {
 public:
  // `vServer` and `vPatience` are the download page's.
  explicit frmOrvPap(const std::wstring& vServer, const DownloadPatience& vPatience = {});

  controls::Label lbTitle;     // of the step
  controls::Label lbStap;      // status line, set by the pages
  controls::Label txtVersion;  // of the program
  controls::Button cmdVorige;
  controls::Button cmdVolgende;
  controls::Button cmdAnnuleren;
  usrWelkom usrWelkom1;
  usrTarget usrTarget1;
  usrPapProcessed usrPapProcessed1;
  usrDownload usrDownload1;
  usrSelectPap usrSelectPap1;
  usrImport usrImport1;

  // The load handler: captions and version. Before the form is shown, and once.
  void Load();
  // Begins with the first step: the window in its normal state in the middle of the screen.
  void InitForm();
  // The captions that are the same in every step, in the language loaded now.
  void setupLanguage();

  std::vector<controls::AnyControl> Controls() override;
  controls::Button* DefaultButton() override { return &cmdVolgende; }
  controls::Button* CancelButton() override { return &cmdAnnuleren; }

 private:
  void NextStep();
  void PreviousStep();
  void ShowStep();

  // The page steps, each the work of one or more steps of the walk.
  void StepWelcome();
  void StepTarget();
  void StepProcessed();
  void StepDownload(std::int32_t vDownloadStep);
  void StepSelect();
  void StepImport();
  void Finish();

  std::array<controls::Page*, 6> Pages();
  void ShowPage(controls::Page* vPage);  // none for nullptr
  void ShowTexts(std::int32_t vTitle, std::int32_t vNext);
  void CompactProductTable() const;
  void LayOut();

  std::int32_t lngStep = 0;
};
