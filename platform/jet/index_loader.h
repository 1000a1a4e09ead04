// Filling a new index with entries that come in order: its pages are written once, and full.
#pragma once

#include <span>
#include <vector>

#include "platform/jet/index_page.h"
#include "platform/jet/pager.h"
#include "platform/jet/usage_map.h"

namespace jet {

// Builds a tree from its leaves upwards. The tree is whole when Finish has returned; the result
// obeys what IndexTree keeps true. Needs a transaction at each call, which may be another one each
// time. Pager and allocator must outlive it.
class IndexLoader {
 public:
  // `root` is a tree as IndexTree::Create has left it.
  IndexLoader(Pager& pager, PageAllocator& allocator, PageNumber table, PageNumber root,
              RowPointer pages_map);

  // REQUIRES an entry above all those added before. kNotSupported for a key without bytes or of
  // more bytes than LimitKey leaves.
  void Add(const IndexEntry& entry);
  void Finish();

 private:
  // The page that a level of the tree is being filled with.
  struct Level {
    PageNumber page = 0;  // 0: none was needed so far
    PageNumber previous = 0;
    std::vector<Bytes> entries;  // whole
    std::size_t bytes = 0;       // in them
    std::size_t prefix = 0;      // what all of them share
  };

  // `at` is the level, 0 for the leaves.
  void AddTo(std::size_t at, Bytes entry);
  // Writes the page that the level has filled, and begins another one.
  void Flush(std::size_t at);
  // `tail` is a node's last child.
  void Write(std::size_t at, PageNumber number, PageNumber next, PageNumber tail);
  PageNumber TakePage();

  Pager& pager_;
  PageAllocator& allocator_;
  PageNumber table_;
  PageNumber root_;
  RowPointer pages_map_;
  std::vector<Level> levels_;  // the leaves first
};

}  // namespace jet
