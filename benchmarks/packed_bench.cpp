// Packed text beside gzip and zstd: the same text, in memory, in one run.

#include <benchmark/benchmark.h>
#include <zlib.h>
#include <zstd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "photarium/streams/PHMCBuffer.h"

namespace {

constexpr std::size_t TextSize = 20'000'000;

// Energies and cross sections such as a table has them: smooth, with noise in
// the last digits.
std::string NumericTable() {
  std::mt19937 random(1);
  std::normal_distribution<double> noise(1., 1e-4);
  std::string text;
  char line[128];
  for (double energy = 1; text.size() < TextSize; energy *= 1.0001) {
    if (energy > 1e3) energy = 1;
    text += std::string(
        line,
        std::size_t(std::snprintf(
            line, sizeof(line), "%.6e %.6e %.6e %.6e %.6e\n", energy,
            1e4 * std::pow(energy, -2.8) * noise(random),
            2 / std::sqrt(energy) * noise(random),
            std::exp(-energy / 100) * noise(random), 0.2 * noise(random))));
  }
  return text;
}

// A number in the eleven columns of a tape.
std::string TapeNumber(double value) {
  char text[32];
  int const exponent = int(std::floor(std::log10(value)));
  std::snprintf(text, sizeof(text), " %8.6f%+d",
                value / std::pow(10., exponent), exponent);
  return text;
}

// Records of a tape of evaluated data: pairs of energy and cross section.
std::string Tape() {
  std::mt19937 random(2);
  std::normal_distribution<double> noise(1., 1e-3);
  std::string text;
  char tail[32];
  double energy = 10;
  for (int line = 1; text.size() < TextSize; ++line) {
    for (int pair = 0; pair < 3; ++pair, energy *= 1.002)
      text += TapeNumber(energy) +
              TapeNumber(1e8 * std::pow(energy, -1.3) * noise(random));
    if (energy > 1e11) energy = 10;
    std::snprintf(tail, sizeof(tail), "%4d%2d%3d%5d\n", 7400, 23, 522,
                  line % 100000);
    text += tail;
  }
  return text;
}

// All tapes below the folder of the real database files, one behind the other
// until the text has its size.
std::string RealTapes() {
  char const* const folder = std::getenv("PHOTARIUM_TEST_DATA");
  std::string text;
  if (!folder) return text;
  std::filesystem::path const tapes =
      std::filesystem::path(folder) / "endf_originals";
  for (auto const& entry : std::filesystem::directory_iterator(tapes)) {
    std::ifstream in(entry.path(), std::ios::binary);
    text.append(std::istreambuf_iterator<char>(in), {});
  }
  if (text.empty()) return text;
  while (text.size() < TextSize) text += std::string(text);
  return text;
}

std::string const& Text(long which) {
  static std::string const texts[] = {NumericTable(), Tape(), RealTapes()};
  return texts[which];
}

struct Source : std::streambuf {
  explicit Source(std::string const& bytes) {
    char* const begin = const_cast<char*>(bytes.data());
    setg(begin, begin, begin + bytes.size());
  }
};

struct Sink : std::streambuf {
  int overflow(int c) override {
    bytes += char(c);
    return c;
  }
  std::streamsize xsputn(char const* text, std::streamsize size) override {
    bytes.append(text, std::size_t(size));
    return size;
  }
  std::string bytes;
};

void PhmcPack(std::string const& text, std::string& bytes) {
  Source source(bytes);
  Sink sink;
  sink.bytes.swap(bytes);
  sink.bytes.clear();
  std::istream in(&source);
  std::ostream out(&sink);
  PHMCBuffer buffer(in, out, /*plain=*/false);
  buffer.sputn(text.data(), std::streamsize(text.size()));
  buffer.close();
  sink.bytes.swap(bytes);
}

void PhmcUnpack(std::string const& bytes, std::string& text) {
  Source source(bytes);
  Sink sink;
  std::istream in(&source);
  std::ostream out(&sink);
  PHMCBuffer buffer(in, out, /*plain=*/false);
  text.resize(
      std::size_t(buffer.sgetn(text.data(), std::streamsize(text.size()))));
}

z_stream Stream(std::string const& from, std::string& to) {
  z_stream stream{};
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(from.data()));
  stream.avail_in = uInt(from.size());
  stream.next_out = reinterpret_cast<Bytef*>(to.data());
  stream.avail_out = uInt(to.size());
  return stream;
}

constexpr int GzipWindow = 15 + 16;

void GzipPack(std::string const& text, std::string& bytes) {
  bytes.resize(text.size() + 1000);
  z_stream stream = Stream(text, bytes);
  deflateInit2(&stream, 6, Z_DEFLATED, GzipWindow, 8, Z_DEFAULT_STRATEGY);
  deflate(&stream, Z_FINISH);
  bytes.resize(stream.total_out);
  deflateEnd(&stream);
}

void GzipUnpack(std::string const& bytes, std::string& text) {
  z_stream stream = Stream(bytes, text);
  inflateInit2(&stream, GzipWindow);
  inflate(&stream, Z_FINISH);
  text.resize(stream.total_out);
  inflateEnd(&stream);
}

void ZstdPack(std::string const& text, std::string& bytes) {
  bytes.resize(ZSTD_compressBound(text.size()));
  bytes.resize(ZSTD_compress(bytes.data(), bytes.size(), text.data(),
                             text.size(), /*compressionLevel=*/3));
}

void ZstdUnpack(std::string const& bytes, std::string& text) {
  text.resize(
      ZSTD_decompress(text.data(), text.size(), bytes.data(), bytes.size()));
}

using Change = void (*)(std::string const&, std::string&);

void Report(benchmark::State& state, std::size_t text, std::size_t bytes) {
  state.SetBytesProcessed(state.iterations() * std::int64_t(text));
  state.counters["ratio"] = double(text) / double(bytes);
}

void BM_Pack(benchmark::State& state, Change pack) {
  std::string const& text = Text(state.range(0));
  if (text.empty()) return state.SkipWithError("no real data");
  std::string bytes;
  for (auto _ : state) pack(text, bytes);
  Report(state, text.size(), bytes.size());
}

void BM_Unpack(benchmark::State& state, Change pack, Change unpack) {
  std::string const& text = Text(state.range(0));
  if (text.empty()) return state.SkipWithError("no real data");
  std::string bytes, read(text.size(), ' ');
  pack(text, bytes);
  for (auto _ : state) unpack(bytes, read);
  if (read != text) state.SkipWithError("another text came back");
  Report(state, text.size(), bytes.size());
}

void Texts(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgName("text")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(BM_Pack, phmc, PhmcPack)->Apply(Texts);
BENCHMARK_CAPTURE(BM_Pack, gzip6, GzipPack)->Apply(Texts);
BENCHMARK_CAPTURE(BM_Pack, zstd3, ZstdPack)->Apply(Texts);
BENCHMARK_CAPTURE(BM_Unpack, phmc, PhmcPack, PhmcUnpack)->Apply(Texts);
BENCHMARK_CAPTURE(BM_Unpack, gzip, GzipPack, GzipUnpack)->Apply(Texts);
BENCHMARK_CAPTURE(BM_Unpack, zstd, ZstdPack, ZstdUnpack)->Apply(Texts);

}  // namespace
