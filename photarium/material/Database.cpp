#include <algorithm>
#include <cstddef>
#include <cstring>
#include <exception>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "photarium/foundation/number.h"
#include "photarium/foundation/text.h"
#include "photarium/material/Material.h"
#include "photarium/material/readers.h"

template <class T>
std::string Material<T>::CacheName;
template <class T>
std::string Material<T>::cachedDB;
template <class T>
DBType Material<T>::CacheType = Unknown;

namespace {

// Guards the three members of the cache, which change together.
std::mutex cacheLock;

// Control columns from 67 on of the head and the end of an ENDF tape.
constexpr std::string_view TapeHead = "   1 0  0     ";
constexpr std::string_view TapeEnd = "  -1 0  0    0";
constexpr std::size_t LineLength = 80;

std::string_view controlColumns(std::string_view line) {
  return line.size() == LineLength ? line.substr(66) : std::string_view();
}

// The first line of the file head of an ENDF material.
bool isFileHead(std::string_view line) {
  return line.size() == LineLength && line.substr(70) == " 1451    1";
}

// A table identifier such as "1000.04p" at the start of a line.
bool isTableHead(std::string_view line) {
  if (!isTableName(line)) return false;
  auto const isNumber = [](std::string_view text) {
    return text.find_first_not_of(" 0123456789") == std::string_view::npos;
  };
  return isNumber(line.substr(0, 6)) && isNumber(line.substr(7, 2));
}

// Path below the data directory of the ENDF file of an element.
template <class T>
std::string endfFile(T Z, std::string const& name) {
  std::string number;
  appendGeneral(number, Z);
  if (number.size() < 3) number.insert(0, 3 - number.size(), '0');
  return "data/ENDF-VII0/" + number + "_" + name + "_000.endf";
}

}  // namespace

template <class T>
DBType Material<T>::recognise(std::string_view line) {
  if (line.starts_with("Element ")) return ElamDB;
  if (isFileHead(line)) {
    try {
      parseENDFline(std::string(line));
      return ENDF;
    } catch (std::bad_alloc const&) {
      throw;
    } catch (...) {
      return Unknown;
    }
  }
  return isTableHead(line) ? MCNP : Unknown;
}

template <class T>
DBType Material<T>::normalise(std::string& text) {
  if (!text.empty() && text.back() != '\n') text += '\n';
  char* const base = text.data();
  DBType type = Unknown;
  bool isCut = false;
  std::size_t kept = 0;
  for (std::size_t begin = 0, end = 0; end < text.size(); begin = end) {
    auto const* const feed = static_cast<char const*>(
        std::memchr(base + begin, '\n', text.size() - begin));
    end = static_cast<std::size_t>(feed - base) + 1;
    std::string_view const line =
        trimmed(std::string_view(base + begin, end - begin - 1), "\r");
    std::string_view const control = controlColumns(line);
    if (control == TapeHead) continue;
    if ((isCut = control == TapeEnd)) break;
    if (type == Unknown) type = recognise(line);
    // Lines move only behind one that has become shorter.
    if (line.data() != base + kept)
      std::copy(line.begin(), line.end(), base + kept);
    kept += line.size();
    base[kept++] = '\n';
  }
  text.resize(kept);
  if (!isCut) text += '\n';
  return type;
}

template <class T>
DBType Material<T>::readDB(std::istream& in, std::ostream& out) {
  std::string text = remainingText(in);
  unpack(text);
  DBType const type = normalise(text);
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
  return type;
}

template <class T>
void Material<T>::readDB(std::map<std::string, Material>& elements,
                         std::string const& file) {
  std::string text;
  if (!readFile(file, text)) throw std::runtime_error("Could not open file");
  unpack(text);
  if (normalise(text) != ElamDB)
    throw std::runtime_error("Unknown file format");
  parseElam(elements, text);
}

template <class T>
void Material<T>::readDB(std::string const& db, std::string const& dir,
                         DBType type) {
  Source source;
  load(db, dir, type, source);
}

template <class T>
void Material<T>::load(std::string const& db, std::string const& dir,
                       DBType type, Source& source) {
  if (db.empty())
    loadDefault(dir, type, source);
  else
    loadFile(db, dir, source);
}

template <class T>
void Material<T>::loadDefault(std::string const& dir, DBType type,
                              Source& source) {
  // Any failure leads to the next file, unless this is the only one.
  auto const isLoaded = [&](DBType format, std::string const& file) {
    if (type != Unknown && type != format) return false;
    try {
      loadFile(file, dir, source);
      return true;
    } catch (std::bad_alloc const&) {
      throw;  // other data would not be what the user has
    } catch (...) {
      if (type != Unknown) throw;
      return false;
    }
  };
  if (isLoaded(ENDF, endfFile(Z, Name))) return;
  if (isLoaded(ElamDB, "data/LocalDB.txt")) return;
  if (isLoaded(MCNP, "data/mcplib04.txt")) return;
  if (type != Unknown) throw std::runtime_error("Couldn't guess database!");
  loadFile("data/ElamDB12.txt", dir, source);
}

template <class T>
void Material<T>::loadFile(std::string const& db, std::string const& dir,
                           Source& source) {
  try {
    std::string text = sourceText(db, dir, source);
    try {
      parse(text, source.type);
    } catch (...) {
      keep(text, source);  // good enough to be recognised
      throw;
    }
    keep(text, source);
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& cause) {
    throw std::runtime_error(std::string(cause.what()) + " while reading " +
                             db + (dir.empty() ? "" : " from " + dir));
  }
}

// The normalised text of a database, from the cache or from the disk.
template <class T>
std::string Material<T>::sourceText(std::string const& db,
                                    std::string const& dir, Source& source) {
  std::string key = ConcatPath(dir, db);
  {
    std::lock_guard const lock(cacheLock);
    if (key == CacheName && !cachedDB.empty() && CacheType != Unknown) {
      source = {key, CacheType};
      return cachedDB;
    }
  }
  std::string text;
  DBType type = Unknown;
  if (readFile(key, text)) {
    unpack(text);
    type = normalise(text);
  } else if (db.find(';') != std::string::npos) {
    type = readList(db, dir, text);
  } else {
    key += ".phc";
    if (!readFile(key, text)) throw std::runtime_error("Could not open file");
    unpack(text);
    type = normalise(text);
  }
  source = {std::move(key), type};
  return text;
}

// Moves a text into the cache; what it held is freed behind the lock.
template <class T>
void Material<T>::keep(std::string& text, Source const& source) {
  std::string name = source.name;
  std::lock_guard const lock(cacheLock);
  cachedDB.swap(text);
  CacheName.swap(name);
  CacheType = source.type;
}

// The texts of several files one behind the other. A file that is not there
// counts as an empty one.
template <class T>
DBType Material<T>::readList(std::string const& db, std::string const& dir,
                             std::string& text) {
  DBType type = Unknown;
  for (std::string const& name :
       split<std::string>(db, ";", /*keepEmpty=*/false)) {
    std::string piece;
    readFile(ConcatPath(dir, name), piece);
    unpack(piece);
    DBType const format = normalise(piece);
    if (type != Unknown && format != type)
      throw std::runtime_error(
          "Database types can not be mixed due to caching");
    type = format;
    text += piece;
  }
  return type;
}

template <class T>
void Material<T>::parse(std::string_view text, DBType type) {
  switch (type) {
    case ElamDB:
      return parseElam(text);
    case ENDF:
      return parseENDF(text);
    case MCNP:
      return parseMCNP(text);
    default:
      throw std::runtime_error("Unknown file format");
  }
}

template std::string Material<double>::CacheName;
template std::string Material<double>::cachedDB;
template DBType Material<double>::CacheType;
template DBType Material<double>::readDB(std::istream&, std::ostream&);
template void Material<double>::readDB(std::map<std::string, Material<double>>&,
                                       std::string const&);
template void Material<double>::readDB(std::string const&, std::string const&,
                                       DBType);
template void Material<double>::load(std::string const&, std::string const&,
                                     DBType, Source&);
template void Material<double>::loadDefault(std::string const&, DBType,
                                            Source&);
template void Material<double>::loadFile(std::string const&, std::string const&,
                                         Source&);
template std::string Material<double>::sourceText(std::string const&,
                                                  std::string const&, Source&);
template void Material<double>::keep(std::string&, Source const&);
template DBType Material<double>::readList(std::string const&,
                                           std::string const&, std::string&);
template DBType Material<double>::normalise(std::string&);
template DBType Material<double>::recognise(std::string_view);
template void Material<double>::parse(std::string_view, DBType);
