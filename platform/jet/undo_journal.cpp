// The undo journal's file, and taking back what it holds.
//
// The file, numbers little-endian: a header, then from kBodyAt a table with an entry for each write
// of the commit, in order, then the old pages that the table names. The header is written after all
// else and holds a fingerprint of the table: a journal cut off while it was written is none.
#include "platform/jet/undo_journal.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "platform/jet/error.h"

namespace jet {

namespace {

static_assert(std::endian::native == std::endian::little, "numbers are stored as they are");

constexpr std::uint64_t kMagic = 0x31'4f'44'4e'55'50'41'50;  // "PAPUNDO1"
constexpr std::size_t kBodyAt = 64;

struct Header {
  std::uint64_t magic = 0;
  std::uint64_t table_fingerprint = 0;
  std::uint32_t entries = 0;
  std::uint32_t images = 0;
  std::uint32_t page_count = 0;  // of the file, before the commit
  std::uint32_t reserved = 0;
};
static_assert(sizeof(Header) <= kBodyAt);

struct Entry {
  std::uint64_t after = 0;  // fingerprint of the page as it is written
  std::uint32_t number = 0;
  std::uint32_t has_image = 0;  // its old bytes are the next of the images
};

// Tells contents apart; four lanes, because it goes over every page that is written.
std::uint64_t Fingerprint(std::span<const std::byte> bytes) {
  constexpr std::uint64_t kMultiplier = 0x9e3779b97f4a7c15;
  constexpr int kRotation = 29;
  std::uint64_t lanes[] = {1, 2, 3, 4};
  while (!bytes.empty()) {
    std::uint64_t words[4] = {};
    const std::size_t size = std::min(bytes.size(), sizeof(words));
    std::memcpy(words, bytes.data(), size);
    for (std::size_t i = 0; i < 4; ++i)
      lanes[i] = std::rotl(lanes[i] ^ words[i], kRotation) * kMultiplier;
    bytes = bytes.subspan(size);
  }
  std::uint64_t all = 0;
  for (const std::uint64_t lane : lanes)
    all = std::rotl(all ^ lane ^ lane >> 32, kRotation) * kMultiplier;
  return all;
}

// Beside the file itself, whatever links lead to it.
std::filesystem::path JournalOf(const std::filesystem::path& database) {
  std::error_code error;
  std::filesystem::path path = std::filesystem::canonical(database, error);
  if (error) path = database;
  path += ".undo";
  return path;
}

template <typename Object>
std::span<char> BytesOf(Object& object) {
  return {reinterpret_cast<char*>(&object), sizeof(object)};
}

void Append(std::vector<char>& to, std::span<const char> bytes) {
  to.insert(to.end(), bytes.begin(), bytes.end());
}

bool ReadAt(std::filebuf& file, std::uint64_t at, std::span<char> into) {
  return file.pubseekpos(static_cast<std::streamoff>(at)) != std::streampos(-1) &&
         file.sgetn(into.data(), static_cast<std::streamsize>(into.size())) ==
             static_cast<std::streamsize>(into.size());
}

// A journal that was written to its end.
struct Journal {
  Header header;
  std::vector<Entry> entries;

  std::uint64_t ImageAt(std::size_t image) const {
    return kBodyAt + entries.size() * sizeof(Entry) + image * kPageSize;
  }
};

std::optional<Journal> ReadJournal(std::filebuf& file, std::uintmax_t size) {
  Journal journal;
  Header& header = journal.header;
  if (!ReadAt(file, 0, BytesOf(header)) || header.magic != kMagic) return std::nullopt;
  const std::uint64_t wanted = kBodyAt + std::uint64_t{header.entries} * sizeof(Entry) +
                               std::uint64_t{header.images} * kPageSize;
  if (header.entries == 0 || wanted > size) return std::nullopt;
  journal.entries.resize(header.entries);
  const std::span<Entry> entries(journal.entries);
  const std::span<char> bytes(reinterpret_cast<char*>(entries.data()), entries.size_bytes());
  if (!ReadAt(file, kBodyAt, bytes)) return std::nullopt;
  if (Fingerprint(std::as_bytes(entries)) != header.table_fingerprint) return std::nullopt;
  const auto images = std::ranges::count_if(entries, [](const Entry& e) { return e.has_image; });
  if (std::cmp_not_equal(images, header.images)) return std::nullopt;
  return journal;
}

// A page that the commit writes: its old bytes, and what it is after each of the writes.
struct TouchedPage {
  std::optional<PageBytes> before;
  std::vector<std::uint64_t> after;
};

enum class Outcome { kWhole, kHalf, kForeign };

// How far the commit has come in the file, judged by each of its pages.
Outcome OutcomeOf(const std::map<PageNumber, TouchedPage>& pages, PageNumber page_count_before,
                  const PageStore& store) {
  if (store.page_count() < page_count_before) return Outcome::kForeign;
  bool whole = true;
  for (const auto& [number, page] : pages) {
    if (number >= store.page_count()) {
      whole = false;
      continue;
    }
    PageBytes now;
    store.Read(number, now);
    const std::uint64_t fingerprint = Fingerprint(now);
    if (fingerprint == page.after.back()) continue;
    whole = false;
    const bool known = number >= page_count_before || (page.before && now == *page.before) ||
                       std::ranges::find(page.after, fingerprint) != page.after.end();
    if (!known) return Outcome::kForeign;
  }
  return whole ? Outcome::kWhole : Outcome::kHalf;
}

// The journal's pages with their old bytes; nothing when there is no whole journal.
std::optional<std::pair<Header, std::map<PageNumber, TouchedPage>>> LoadJournal(
    const std::filesystem::path& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  std::filebuf file;
  if (error || file.open(path, std::ios::in | std::ios::binary) == nullptr) return std::nullopt;
  const std::optional<Journal> journal = ReadJournal(file, size);
  if (!journal) return std::nullopt;
  std::map<PageNumber, TouchedPage> pages;
  std::size_t image = 0;
  for (const Entry& entry : journal->entries) {
    TouchedPage& page = pages[entry.number];
    page.after.push_back(entry.after);
    if (entry.has_image == 0) continue;
    if (!ReadAt(file, journal->ImageAt(image++), BytesOf(page.before.emplace())))
      return std::nullopt;
  }
  return std::pair(journal->header, std::move(pages));
}

void TakeBack(PageStore& store, const std::filesystem::path& journal_file) {
  const auto journal = LoadJournal(journal_file);
  if (!journal) return;
  const auto& [header, pages] = *journal;
  if (OutcomeOf(pages, header.page_count, store) != Outcome::kHalf) return;
  if (store.read_only())
    throw Error(ErrorKind::kReadOnly, "a change that was cut off has to be taken back first");
  for (const auto& [number, page] : pages)
    if (page.before) store.Write(number, *page.before);
  store.Truncate(header.page_count);
  store.Sync();
}

}  // namespace

UndoJournal::UndoJournal(const std::filesystem::path& database) : path_(JournalOf(database)) {}

UndoJournal::~UndoJournal() {
  if (!file_.is_open()) return;
  file_.close();
  std::error_code ignored;
  std::filesystem::remove(path_, ignored);
}

void UndoJournal::Keep(PageNumber page_count, const std::vector<JournalledWrite>& writes) {
  if (writes.empty() || unavailable_) return;
  if (!file_.is_open()) {
    file_.pubsetbuf(nullptr, 0);  // what is written is in the system's hands
    unavailable_ = file_.open(path_, std::ios::out | std::ios::binary | std::ios::trunc) == nullptr;
    if (unavailable_) return;
  }
  Header header{.magic = kMagic, .page_count = page_count};
  body_.clear();
  std::vector<Entry> entries;
  entries.reserve(writes.size());
  for (const JournalledWrite& write : writes) {
    const bool has_image = write.before != nullptr;
    entries.push_back({Fingerprint(*write.after), write.number, has_image ? 1U : 0U});
    header.images += has_image ? 1 : 0;
  }
  header.entries = static_cast<std::uint32_t>(entries.size());
  const std::span<const Entry> table(entries);
  header.table_fingerprint = Fingerprint(std::as_bytes(table));
  Append(body_, {reinterpret_cast<const char*>(table.data()), table.size_bytes()});
  for (const JournalledWrite& write : writes) {
    if (write.before != nullptr)
      Append(body_, {reinterpret_cast<const char*>(write.before->data()), kPageSize});
  }
  const auto put = [this](std::size_t at, std::span<const char> bytes) {
    return file_.pubseekpos(static_cast<std::streamoff>(at)) != std::streampos(-1) &&
           file_.sputn(bytes.data(), static_cast<std::streamsize>(bytes.size())) ==
               static_cast<std::streamsize>(bytes.size());
  };
  if (!put(kBodyAt, body_) || !put(0, BytesOf(header)))
    throw Error(ErrorKind::kDiskFull, "the undo journal cannot be written");
}

void UndoJournal::Leave() noexcept {
  file_.close();
  unavailable_ = true;
}

std::unique_ptr<PageStore> OpenRecovered(const std::filesystem::path& database, OpenMode mode) {
  const std::filesystem::path journal = JournalOf(database);
  std::error_code error;
  if (std::filesystem::is_regular_file(journal, error)) {
    // A process that is still at work keeps its journal: opening then fails as in use.
    TakeBack(*OpenPageStore(database, OpenMode::kReadWrite), journal);
    std::filesystem::remove(journal, error);
  }
  return OpenPageStore(database, mode);
}

}  // namespace jet
