// The undo journal's file, and taking back what it holds.
#include "platform/jet/undo_journal.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <map>
#include <optional>
#include <span>
#include <utility>

#include "platform/jet/error.h"
#include "platform/jet/file_steps.h"
#include "platform/jet/undo_journal_format.h"

namespace jet {

namespace {

namespace format = undo_journal_format;
namespace entry = undo_journal_format::entry;

static_assert(std::endian::native == std::endian::little, "fingerprints take words as they lie");

// One lane's share of a block.
std::uint64_t Mixed(std::uint64_t lane, const std::byte* word_at) {
  constexpr std::uint64_t kMultiplier = 0x9e3779b97f4a7c15;
  constexpr int kRotation = 29;
  std::uint64_t word = 0;
  std::memcpy(&word, word_at, sizeof(word));
  return std::rotl(lane ^ word, kRotation) * kMultiplier;
}

// Tells contents apart; four lanes in registers, because it goes over every page that is written.
std::uint64_t Fingerprint(std::span<const std::byte> bytes) {
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  std::uint64_t a = 1;
  std::uint64_t b = 2;
  std::uint64_t c = 3;
  std::uint64_t d = 4;
  const auto mix = [&](const std::byte* block) {
    a = Mixed(a, block);
    b = Mixed(b, block + kWord);
    c = Mixed(c, block + 2 * kWord);
    d = Mixed(d, block + 3 * kWord);
  };
  for (; bytes.size() >= 4 * kWord; bytes = bytes.subspan(4 * kWord)) mix(bytes.data());
  std::array<std::byte, 4 * kWord> last{};
  std::ranges::copy(bytes, last.begin());
  mix(last.data());
  std::uint64_t all = 0;
  for (const std::uint64_t lane : {a, b, c, d}) {
    const std::uint64_t folded = lane ^ lane >> 32;
    all = Mixed(all, std::as_bytes(std::span(&folded, 1)).data());
  }
  return all;
}

// Beside the file itself, whatever links lead to it.
std::filesystem::path JournalOf(const std::filesystem::path& database) {
  std::filesystem::path path = FileItself(database);
  path += ".undo";
  return path;
}

std::size_t ImagesAt(std::size_t entries) { return format::kHeaderSize + entries * entry::kSize; }

// A page that the commit writes: where its old bytes are in the journal, unless it was not in the
// file yet, and what it is after each of the writes.
struct TouchedPage {
  std::optional<std::size_t> before_at;
  std::vector<std::uint64_t> after;
};

// A journal that was written to its end.
struct Journal {
  std::vector<std::byte> bytes;
  std::uint64_t page_zero = 0;
  PageNumber page_count = 0;  // before the commit
  std::map<PageNumber, TouchedPage> pages = {};

  std::span<const std::byte, kPageSize> Before(const TouchedPage& page) const {
    return std::span(bytes).subspan(*page.before_at).first<kPageSize>();
  }
};

// The pages that the entries name. Nothing when they are not what a commit writes: each page of the
// file with its old bytes, and those that make it grow without a gap.
std::optional<std::map<PageNumber, TouchedPage>> PagesOf(ByteView journal) {
  const std::size_t entries = journal.U32(format::kEntryCountAt);
  const PageNumber page_count = journal.U32(format::kPageCountAt);
  std::map<PageNumber, TouchedPage> pages;
  std::size_t image_at = ImagesAt(entries);
  for (std::size_t at = format::kHeaderSize; at < ImagesAt(entries); at += entry::kSize) {
    TouchedPage& page = pages[journal.U32(at + entry::kNumberAt)];
    page.after.push_back(journal.U64(at + entry::kAfterAt));
    if (journal.U32(at + entry::kHasImageAt) == 0) continue;
    page.before_at = image_at;
    image_at += kPageSize;
  }
  PageNumber added = page_count;
  for (const auto& [number, page] : pages) {
    if (page.before_at.has_value() != (number < page_count)) return std::nullopt;
    if (number >= page_count && number != added++) return std::nullopt;
  }
  if (image_at != journal.size()) return std::nullopt;
  return pages;
}

// Nothing when the file is no journal, was cut off while it was written, is damaged, or gone: its
// owner may have closed the database meanwhile. kCannotOpen and kIo when it cannot be read: it may
// be needed.
std::optional<Journal> ReadJournal(const std::filesystem::path& path) {
  std::filebuf file;
  if (!TryPatiently([&] { return file.open(path, std::ios::in | std::ios::binary) != nullptr; })) {
    std::error_code error;
    if (!std::filesystem::exists(path, error) && !error) return std::nullopt;
    throw Error(ErrorKind::kCannotOpen, {path.u16string()}, "the undo journal cannot be read");
  }
  const std::streamoff size = file.pubseekoff(0, std::ios::end);
  if (size < 0) throw Error(ErrorKind::kIo, "the undo journal cannot be read");
  const auto read = [&](std::span<std::byte> into) {
    const auto wanted = static_cast<std::streamsize>(into.size());
    if (file.pubseekpos(0) == std::streampos(-1) ||
        file.sgetn(reinterpret_cast<char*>(into.data()), wanted) != wanted)
      throw Error(ErrorKind::kIo, "the undo journal cannot be read");
  };
  if (std::cmp_less(size, format::kHeaderSize)) return std::nullopt;
  std::array<std::byte, format::kHeaderSize> header;
  read(header);
  const ByteView fields(header);
  if (fields.U64(format::kMagicAt) != format::kMagic) return std::nullopt;
  const std::uint32_t entries = fields.U32(format::kEntryCountAt);
  const std::uint64_t whole =
      ImagesAt(entries) + std::uint64_t{fields.U32(format::kImageCountAt)} * kPageSize;
  // An earlier, larger commit may have left bytes behind.
  if (entries == 0 || std::cmp_greater(whole, size)) return std::nullopt;

  Journal journal{.bytes = std::vector<std::byte>(whole),
                  .page_zero = fields.U64(format::kPageZeroAt),
                  .page_count = fields.U32(format::kPageCountAt)};
  read(journal.bytes);
  if (Fingerprint(std::span(journal.bytes).subspan(format::kFingerprintedAt)) !=
      fields.U64(format::kFingerprintAt))
    return std::nullopt;
  std::optional<std::map<PageNumber, TouchedPage>> pages = PagesOf(ByteView(journal.bytes));
  if (!pages) return std::nullopt;
  journal.pages = std::move(*pages);
  return journal;
}

enum class Outcome { kWhole, kHalf, kForeign };

// How far the commit has come in the file, judged by each of its pages. Whoever else has written to
// the file since has counted that in page 0, or made it grow: then nothing is known any more.
Outcome OutcomeOf(const Journal& journal, const PageStore& store) {
  const PageNumber last = journal.pages.rbegin()->first;
  if (store.page_count() < journal.page_count ||
      store.page_count() > std::max(journal.page_count, last + 1))
    return Outcome::kForeign;
  PageBytes now;
  store.Read(0, now);
  if (!journal.pages.contains(0) && Fingerprint(now) != journal.page_zero) return Outcome::kForeign;
  bool whole = true;
  for (const auto& [number, page] : journal.pages) {
    if (number >= store.page_count()) {
      whole = false;
      continue;
    }
    store.Read(number, now);
    const std::uint64_t fingerprint = Fingerprint(now);
    if (fingerprint == page.after.back()) continue;
    whole = false;
    // A new page is empty until its turn comes, where one behind it was written first.
    const bool old = page.before_at
                         ? std::ranges::equal(now, journal.Before(page))
                         : std::ranges::all_of(now, [](std::byte b) { return b == std::byte{0}; });
    if (!old && std::ranges::find(page.after, fingerprint) == page.after.end())
      return Outcome::kForeign;
  }
  return whole ? Outcome::kWhole : Outcome::kHalf;
}

void TakeBack(PageStore& store, const std::filesystem::path& journal_file) {
  const std::optional<Journal> journal = ReadJournal(journal_file);
  if (!journal || OutcomeOf(*journal, store) != Outcome::kHalf) return;
  if (store.read_only())
    throw Error(ErrorKind::kReadOnly, "a change that was cut off has to be taken back first");
  for (const auto& [number, page] : journal->pages)
    if (page.before_at) store.Write(number, journal->Before(page));
  store.Truncate(journal->page_count);
  store.Sync();
}

// Takes away a journal that is of no more use; one that cannot be removed is emptied. False when
// that fails, too.
bool Drop(const std::filesystem::path& journal) {
  std::error_code error;
  const auto remove = [&] {
    std::filesystem::remove(journal, error);
    return !error;
  };
  if (!TryPatiently(remove)) std::filesystem::resize_file(journal, 0, error);
  return !error;
}

}  // namespace

UndoJournal::UndoJournal(const std::filesystem::path& database) : path_(JournalOf(database)) {}

UndoJournal::~UndoJournal() {
  if (!file_.is_open()) return;
  // Without its header it is none, should somebody keep it from being removed.
  Put(std::array<std::byte, format::kHeaderSize>{});
  file_.close();
  Drop(path_);
}

void UndoJournal::Keep(PageNumber page_count, const PageBytes& page_zero,
                       const std::vector<JournalledWrite>& writes) {
  if (writes.empty() || unavailable_) return;
  if (!file_.is_open()) {
    file_.pubsetbuf(nullptr, 0);  // what is written is in the system's hands
    constexpr auto kAnew = std::ios::out | std::ios::binary | std::ios::trunc;
    unavailable_ = !TryPatiently([&] { return file_.open(path_, kAnew) != nullptr; });
    if (unavailable_) return;
  }
  const auto images = static_cast<std::size_t>(
      std::ranges::count_if(writes, [](const JournalledWrite& w) { return w.before != nullptr; }));
  const std::size_t size = ImagesAt(writes.size()) + images * kPageSize;
  if (bytes_.size() < size) bytes_.resize(size);
  const std::span<std::byte> bytes = std::span(bytes_).first(size);
  ByteEditor journal(bytes);
  journal.SetU64(format::kMagicAt, format::kMagic);
  journal.SetU64(format::kPageZeroAt, Fingerprint(page_zero));
  journal.SetU32(format::kPageCountAt, page_count);
  journal.SetU32(format::kEntryCountAt, static_cast<std::uint32_t>(writes.size()));
  journal.SetU32(format::kImageCountAt, static_cast<std::uint32_t>(images));
  std::size_t entry_at = format::kHeaderSize;
  std::size_t image_at = ImagesAt(writes.size());
  for (const JournalledWrite& write : writes) {
    journal.SetU64(entry_at + entry::kAfterAt, Fingerprint(*write.after));
    journal.SetU32(entry_at + entry::kNumberAt, write.number);
    journal.SetU32(entry_at + entry::kHasImageAt, write.before != nullptr ? 1 : 0);
    entry_at += entry::kSize;
    if (write.before == nullptr) continue;
    std::ranges::copy(*write.before, journal.Slice(image_at, kPageSize).begin());
    image_at += kPageSize;
  }
  journal.SetU64(format::kFingerprintAt, Fingerprint(bytes.subspan(format::kFingerprintedAt)));
  if (!Put(bytes)) throw Error(ErrorKind::kDiskFull, "the undo journal cannot be written");
}

void UndoJournal::Leave() noexcept {
  file_.close();
  unavailable_ = true;
}

bool UndoJournal::Put(std::span<const std::byte> bytes) {
  const auto size = static_cast<std::streamsize>(bytes.size());
  return file_.pubseekpos(0) != std::streampos(-1) &&
         file_.sputn(reinterpret_cast<const char*>(bytes.data()), size) == size;
}

std::unique_ptr<PageStore> OpenRecovered(const std::filesystem::path& database, OpenMode mode) {
  const std::filesystem::path journal = JournalOf(database);
  std::error_code error;
  if (std::filesystem::is_regular_file(journal, error)) {
    // A process that is still at work keeps its journal: opening then fails as in use.
    const std::unique_ptr<PageStore> store = OpenPageStore(database, OpenMode::kMend);
    TakeBack(*store, journal);
    if (!Drop(journal) && mode != OpenMode::kReadOnly && !store->read_only())
      throw Error(ErrorKind::kCannotOpen, {journal.u16string()},
                  "an undo journal of no more use cannot be removed");
  }
  return OpenPageStore(database, mode);
}

}  // namespace jet
