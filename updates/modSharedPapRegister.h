// The register of processed updates: the table PriceUpdates in the product table that they were
// applied to. Explained in docs/register.md.
#pragma once

#include <string>

#include "engine/clsOrvPap.h"
#include "updates/modSharedPapFolder.h"

// The register as GetProcessedCollection read it last, in ascending order of DateProcessed; a
// snapshot, which SetPapProcessed does not touch. Of each object these are filled: FilePath (a bare
// file name), PapDate (the price date of the update), AssortmentDescription, SupplierDescription
// and DateProcessed.
const PapCollection& ProcessedPaps();

// Reads the register of the product table at `vPath` into ProcessedPaps; true when it has a row. A
// product table that OpenProductTable refuses leaves ProcessedPaps as it was. Without the table
// PriceUpdates, which is how every product table begins, there is no collection and nothing is
// shown; any other error is reported and leaves no collection either. The product table is released
// in every case.
bool GetProcessedCollection(const std::wstring& vPath);

// Whether ProcessedPaps holds an update of this bare file name, compared exactly. Constant time.
bool IsPapProcessed(const std::wstring& vFileName);

// Records `vPap` as processed now in the product table at `vPath`, or withdraws its record. The row
// is found by the file's name without its folder, compared as the database does; one that is there
// keeps everything but its time. Makes the table PriceUpdates where it is missing. False, and
// nothing changed, for a product table that OpenProductTable refuses; false after the report of any
// other error (a name with an apostrophe and one of more than 50 characters among them). The
// product table is released in every case.
bool SetPapProcessed(const std::wstring& vPath, const clsOrvPap& vPap, bool vProcessed);
