// Pages in memory in place of a file: a disk that fails or stops on demand and outlives its owner.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "platform/jet/page_store.h"

namespace jet::test {

// What lies on the disk, shared by the stores that open it one after the other. A page never
// written costs nothing, so that a large file can be had cheaply.
struct MemoryDisk {
  std::vector<std::unique_ptr<PageBytes>> pages;

  std::size_t writes = 0;             // asked for since this was last set to 0
  std::vector<PageNumber> write_log;  // their pages

  // The write with this number (from 0, counted by `writes`) finds the disk full.
  std::optional<std::size_t> fail_at_write;
  // This write and all later ones never reach the disk and report nothing: the process is killed.
  std::optional<std::size_t> cut_off_at_write;
  bool read_only = false;

  void FailAtWrite(std::size_t number) {
    writes = 0;
    fail_at_write = number;
  }
  void CutOffAtWrite(std::size_t number) {
    writes = 0;
    cut_off_at_write = number;
  }
  void Heal() {
    fail_at_write.reset();
    cut_off_at_write.reset();
    writes = 0;
    write_log.clear();
  }

  void Resize(PageNumber page_count) { pages.resize(page_count); }
  PageBytes& Page(PageNumber number) {
    if (!pages.at(number)) pages[number] = std::make_unique<PageBytes>();
    return *pages[number];
  }
  // All pages as they are now.
  std::vector<PageBytes> Snapshot() const {
    std::vector<PageBytes> copy(pages.size());
    for (std::size_t i = 0; i < pages.size(); ++i) {
      if (pages[i]) copy[i] = *pages[i];
    }
    return copy;
  }
};

class MemoryPageStore final : public PageStore {
 public:
  explicit MemoryPageStore(std::shared_ptr<MemoryDisk> disk)
      : disk_(std::move(disk)), page_count_(static_cast<PageNumber>(disk_->pages.size())) {}

  PageNumber page_count() const override { return page_count_; }
  bool read_only() const override { return disk_->read_only; }

  void Read(PageNumber number, std::span<std::byte, kPageSize> into) const override {
    if (number >= disk_->pages.size())
      throw Error(ErrorKind::kDamaged, "page behind the end of the file", number);
    const auto& page = disk_->pages[number];
    if (page) {
      std::ranges::copy(*page, into.begin());
    } else {
      std::ranges::fill(into, std::byte{0});
    }
  }

  void Write(PageNumber number, std::span<const std::byte, kPageSize> page) override {
    const std::size_t write = disk_->writes++;
    disk_->write_log.push_back(number);
    if (number > page_count_) throw Error(ErrorKind::kIo, "a page far behind the end", number);
    if (write == disk_->fail_at_write) throw Error(ErrorKind::kDiskFull, "made to fail", number);
    page_count_ = std::max(page_count_, number + 1);
    if (disk_->cut_off_at_write && write >= *disk_->cut_off_at_write) return;
    if (disk_->pages.size() < page_count_) disk_->Resize(page_count_);
    std::ranges::copy(page, disk_->Page(number).begin());
  }

  void Truncate(PageNumber page_count) override {
    page_count_ = page_count;
    if (!disk_->cut_off_at_write) disk_->Resize(page_count);
  }

  void Sync() override {}

 private:
  std::shared_ptr<MemoryDisk> disk_;
  PageNumber page_count_;
};

}  // namespace jet::test
