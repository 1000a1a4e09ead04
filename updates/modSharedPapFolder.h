// The folder of price-update files, copying and deleting single files, and the product table's
// place.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/clsOrvPap.h"

// Price updates in the order in which they were found; positions in lists count them from 1. A page
// that shows one shares it, so that a new scan does not take it away. Never empty: where there are
// none there is no collection.
using PapCollection = std::optional<std::vector<std::shared_ptr<clsOrvPap>>>;

// What GetPapCollection found last.
extern PapCollection AvailablePaps;

// The folder where updates wait, PAP32 in the program's folder. Throws as ProgramFolder
// (app/modShared.h) does.
std::wstring PapFolder();

// Reads the header of every update file in the folder and makes AvailablePaps anew of those whose
// version is ours, in the order of platform/files/folder.h; false when there is none. `vFolder` is
// replaced by its short form. For a folder that is missing a message is shown, the result is false
// and AvailablePaps stays. Throws text::RuntimeError when the folder or a file in it cannot be read
// or a date lies outside the calendar, and names the file: the scan ends there, and AvailablePaps
// stays.
bool GetPapCollection(std::wstring& vFolder);

// Deletes the update files in the folder, read-only ones too; other files stay. False after a
// message that there is no such folder, or after the report of an error; what was deleted by then
// is gone.
bool DelPapFiles(const std::wstring& vFolder);

// Copies a file over another, which is the old one or the whole new one at every moment. False, and
// nothing shown, when that failed (platform/files/file_copy.h tells why it may); the target is then
// as it was.
bool CopyPapFile(const std::wstring& vSource, const std::wstring& vTarget);

// Deletes a file. True, whatever became of it: every error is ignored.
bool DeletePapFile(const std::wstring& vPath);

// Where the product table is: the setting ProductTable of the user, then of the machine, then
// Orv.pt in the program's folder.
std::wstring GetProductTablePath();
