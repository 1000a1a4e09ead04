// What stands on the screen, as the toolkit's own windows have it, and what a user does there.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace walks {

// Texts are in UTF-8, captions without the marks of their access keys.

// Looking; on the windows' thread (robot.h). What is hidden is not there.

// The texts at the top of the form.
std::string Title();
std::string Status();
// The captions of the buttons in the frontmost window, those that are disabled in brackets:
// "(<< Previous) Next >> Close".
std::string Buttons();
// The list, a line an item: "x" if checked, "-" if grey or "!" if red, and its texts, as in
// "x -2026-01-05|Plates|Veldhaven". The marks of check boxes are left out in a list without any.
std::vector<std::string> Rows();
// The text that stands in the list in place of rows.
std::string EmptyText();
// The text box.
std::string Text();
// How far the last progress bar is, from 0 to 1.
double Progress();
// Whether the check box or option button with this caption is on.
bool IsOn(const std::string& caption);
// The text of the message box in front, with blanks for line ends, which are those of the box, too;
// "" for none.
std::string Message();
// All of it, for a person to read.
std::string Everything();
// Whether the program waits for the user: no work is in hand, all windows show what they should.
bool AtRest();

// Doing; for the script. Each waits for its control to be there and enabled, acts, and waits until
// the program waits for the user again.

void Press(const std::string& button);
void Switch(const std::string& check_box_or_option);
void Check(std::size_t row, bool checked);
void Type(const std::string& text);
// Waits until the program waits for the user.
void AwaitRest();

// As Press, but does not wait for what comes of it.
void Begin(const std::string& button);
// Clicks on the close box, whatever is going on. On the windows' thread.
void ClickCloseBox();
// Keys as xdotool names them, pressed on the keyboard one after the other. They take their way
// through the window system: what comes of them is to be awaited.
void Keys(const std::string& keys);

}  // namespace walks
