// Lines of the download index: sound ones, and everything else that a server may send.
#include "updates/clsDownloadFileInfo.h"

#include <gtest/gtest.h>

#include "platform/text/date.h"

namespace {

clsDownloadFileInfo InfoOf(const std::wstring& vLine) {
  clsDownloadFileInfo info;
  EXPECT_TRUE(info.AddLine(vLine)) << vLine;
  return info;
}

TEST(clsDownloadFileInfoTest, BlanksGoAndQuotesMeanNothing) {
  const clsDownloadFileInfo info =
      InfoOf(L" 2026_SUP_ASS.PRC , Beams,\"First\" ,20260105, 12345 , New prices ,more");
  EXPECT_EQ(info.FileName, L"2026_SUP_ASS.PRC");
  EXPECT_EQ(info.AssortmentDescription, L"Beams");
  EXPECT_EQ(info.SupplierDescription, L"\"First\"");
  EXPECT_EQ(info.Remark, L"New prices");
  EXPECT_EQ(InfoOf(L"a,b,c,20260105,1,remark\r").Remark, L"remark\r");
}

TEST(clsDownloadFileInfoTest, LinesWithFewerFields) {
  clsDownloadFileInfo empty;
  EXPECT_FALSE(empty.AddLine(L""));
  EXPECT_EQ(InfoOf(L"  ").FileName, L"");
  const clsDownloadFileInfo one = InfoOf(L"x_S_A.PRC");
  EXPECT_EQ(one.SupplierCode, L"S");
  EXPECT_EQ(one.Date, 0) << "no date, not the date of an empty text";
}

TEST(clsDownloadFileInfoTest, DatesAndSizesThatAreNone) {
  for (const wchar_t* date : {L"99999999", L"-9990101"}) {
    const clsDownloadFileInfo info = InfoOf(L"f,a,s," + std::wstring(date) + L",7,remark");
    EXPECT_EQ(info.Date, 0);
    EXPECT_EQ(info.Size, 7) << "a bad date costs nothing else";
  }
  EXPECT_EQ(text::FormatDate(InfoOf(L"f,a,s,").Date), L"1999-11-30");
  const std::pair<const wchar_t*, double> sizes[] = {
      {L"5000000000", 5e9}, {L"12.5", 12.5}, {L"-3", -3}, {L"big", 0}, {L"1e999", 0},
  };
  for (const auto& [written, read] : sizes)
    EXPECT_EQ(InfoOf(L"f,a,s,20260105," + std::wstring(written)).Size, read) << written;
}

TEST(clsDownloadFileInfoTest, CodesInTheFileName) {
  const struct {
    const wchar_t* name;
    const wchar_t* supplier;
    const wchar_t* assortment;
  } cases[] = {
      {L"p_S_A_B.c.PRC", L"S", L"A_B"},
      {L"p.q_S.T_A.PRC", L"S.T", L"A"},
      {L"__.PRC", L"", L""},
      {L"p_S.PRC", L"", L""},
      {L"p.x_S_A", L"", L""},
      {L"p_S_", L"", L""},
      {L"_", L"", L""},
  };
  for (const auto& one : cases) {
    const clsDownloadFileInfo info = InfoOf(one.name);
    EXPECT_EQ(info.SupplierCode, one.supplier) << one.name;
    EXPECT_EQ(info.AssortmentCode, one.assortment) << one.name;
  }
}

}  // namespace
