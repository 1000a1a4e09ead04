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

TEST(clsDownloadFileInfoTest, TakesTheFieldsOfALine) {
  const clsDownloadFileInfo info =
      InfoOf(L" 2026_SUP_ASS.PRC , Beams,\"First\" ,20260105, 12345 , New prices ,more");
  EXPECT_EQ(info.FileName, L"2026_SUP_ASS.PRC");
  EXPECT_EQ(info.AssortmentDescription, L"Beams");
  EXPECT_EQ(info.SupplierDescription, L"\"First\"") << "quotes mean nothing";
  EXPECT_EQ(text::FormatDate(info.Date), L"2026-01-05");
  EXPECT_EQ(info.Size, 12345);
  EXPECT_EQ(info.Remark, L"New prices");
  EXPECT_EQ(info.SupplierCode, L"SUP");
  EXPECT_EQ(info.AssortmentCode, L"ASS");
  EXPECT_FALSE(info.Download);
  EXPECT_TRUE(info.Chosen);
  EXPECT_EQ(InfoOf(L"a,b,c,20260105,1,remark\r").Remark, L"remark\r");
}

TEST(clsDownloadFileInfoTest, LinesWithFewerFields) {
  clsDownloadFileInfo empty;
  EXPECT_FALSE(empty.AddLine(L""));
  EXPECT_EQ(InfoOf(L"  ").FileName, L"");
  const clsDownloadFileInfo one = InfoOf(L"x_S_A.PRC");
  EXPECT_EQ(one.SupplierCode, L"S");
  EXPECT_EQ(one.Date, 0) << "no date, not the date of an empty text";
  EXPECT_EQ(one.Size, 0);
  const clsDownloadFileInfo four = InfoOf(L"x,A,S,20260105");
  EXPECT_EQ(text::FormatDate(four.Date), L"2026-01-05");
  EXPECT_EQ(four.Size, 0);
  EXPECT_EQ(InfoOf(L",,,,,").FileName, L"");
}

TEST(clsDownloadFileInfoTest, DatesAndSizes) {
  const std::pair<const wchar_t*, const wchar_t*> dates[] = {
      {L"20240230", L"2024-03-01"}, {L"20241301", L"2025-01-01"}, {L"2026", L"2025-11-30"},
      {L"99999999", L"1899-12-30"}, {L"-9990101", L"1899-12-30"}, {L"soon", L"1999-11-30"},
      {L"", L"1999-11-30"},
  };
  for (const auto& [written, read] : dates) {
    const clsDownloadFileInfo info = InfoOf(L"f,a,s," + std::wstring(written) + L",7,remark");
    EXPECT_EQ(text::FormatDate(info.Date), read) << written;
    EXPECT_EQ(info.Size, 7) << "a bad date costs nothing else";
    EXPECT_EQ(info.Remark, L"remark");
  }
  const std::pair<const wchar_t*, double> sizes[] = {
      {L"5000000000", 5e9}, {L"12.5", 12.5}, {L"-3", -3}, {L"big", 0}, {L"", 0}, {L"1e999", 0},
  };
  for (const auto& [written, read] : sizes)
    EXPECT_EQ(InfoOf(L"f,a,s,20260105," + std::wstring(written)).Size, read) << written;
}

TEST(clsDownloadFileInfoTest, CodesInTheFileName) {
  struct Case {
    const wchar_t* name;
    const wchar_t* supplier;
    const wchar_t* assortment;
  };
  const Case cases[] = {
      {L"p_S_A.PRC", L"S", L"A"},
      {L"p_S_A_B.c.PRC", L"S", L"A_B"},
      {L"p.q_S.T_A.PRC", L"S.T", L"A"},
      {L"__.PRC", L"", L""},
      {L"p_S.PRC", L"", L""},
      {L"pSA.PRC", L"", L""},
      {L"p.x_S_A", L"", L""},
      {L"p_S_", L"", L""},
      {L"_", L"", L""},
  };
  for (const Case& one : cases) {
    const clsDownloadFileInfo info = InfoOf(one.name);
    EXPECT_EQ(info.SupplierCode, one.supplier) << one.name;
    EXPECT_EQ(info.AssortmentCode, one.assortment) << one.name;
  }
}

}  // namespace
