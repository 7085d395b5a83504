#pragma once

#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>

#include "photarium/foundation/export.h"
#include "photarium/streams/PHMCBuffer.h"

/// Text stream that packs what is written and unpacks what is read.
///
/// It works on a pair of streams of the caller or on a file of its own, and
/// reads packed and plain text alike. Numbers are in the classic locale.
///
///     PHMCStream table("W.phc", /*plain=*/false,
///                      std::ios::out | std::ios::binary);
///     table << "1.5 2\n1.5 3\n";
///     table.close();
///
/// Text is complete only behind close() or the destructor; without them the end
/// code is missing. A file that is opened and never written stays empty.
///
/// What PHMCBuffer throws sets `badbit`; it reaches the caller only where the
/// exception mask holds `badbit`, so set that to tell a broken file from a
/// short one. One thread at a time.
class PHOTARIUM_EXPORT PHMCStream : public std::iostream {
 public:
  /// Unpacks `source` and packs into `target`, by default the standard streams.
  /// Neither is owned; both must outlive the stream. With `plain` text is
  /// written as it stands.
  PHMCStream(std::istream& source = std::cin, std::ostream& target = std::cout,
             bool plain = false);

  /// Opens the file `name` with `mode`, a combination of std::ios::in, out,
  /// binary and so on. A file that cannot be opened shows as fail(), nothing is
  /// thrown.
  PHMCStream(std::string const& name, bool plain, int mode);

  PHMCStream(PHMCStream const&) = delete;
  PHMCStream& operator=(PHMCStream const&) = delete;

  /// Completes and closes as close() does, without throwing.
  ~PHMCStream() override;

  /// Completes the packed text and closes the file; the caller's streams are
  /// flushed. A file that could not be written sets `badbit`. Throws what
  /// PHMCBuffer::close() throws.
  void close();

  /// Limits the text of packed input as PHMCBuffer::limitText() does. What
  /// exceeds it sets `badbit`, or throws as above.
  void limitText(std::uint64_t size) { buffer.limitText(size); }

  /// The same with PHMCBuffer::plausibleText() of the size of the file `name`,
  /// which is 64 MiB where that has no size, as a pipe.
  void limitText(std::string const& name);

  /// True once that limit ended the text.
  bool exceededLimit() const { return buffer.exceededLimit(); }

 private:
  std::fstream file;  // unopened on a pair of streams
  PHMCBuffer buffer;
};
