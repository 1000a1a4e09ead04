// The download folder as client and server know it: where it is, who may read it, what its index
// looks like.
#pragma once

namespace DownloadFolder {

// Below the address of the download server.
inline constexpr wchar_t kPath[] = L"/orv/PAP32SP7/";

inline constexpr wchar_t kUserName[] = L"plovatin";
inline constexpr wchar_t kPassword[] = L"plovatin";

// The index, and its first line. Every further line is a file: clsDownloadFileInfo.
inline constexpr wchar_t kIndexFile[] = L"Info.txt";
inline constexpr wchar_t kIdentification[] = L"OrvPapInfo";

}  // namespace DownloadFolder
