#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <utility>
#include <vector>

#include "app/readers/qv_gbxml_reader.h"
#include "tests/support/qv_test_paths.h"

// Reading a model beside the bare XML parse of the same bytes, without taking either down again.
// The project's samples, and real
// ones where they are at hand (`QV_SHARED_DATA`, or ../shared/data beside the project).

namespace {

namespace fs = std::filesystem;

using bytes = std::shared_ptr<const std::string>;

bytes read_file(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  auto content = std::make_shared<std::string>(fs::file_size(path), '\0');
  file.read(content->data(), static_cast<std::streamsize>(content->size()));
  return content;
}

void parse(benchmark::State& state, const bytes& content) {
  for (auto _ : state) {
    auto document = std::make_unique<pugi::xml_document>();
    benchmark::DoNotOptimize(document->load_buffer(content->data(), content->size()).status);
    state.PauseTiming();
    document.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(content->size()));
}

void read(benchmark::State& state, const bytes& content) {
  for (auto _ : state) {
    state.PauseTiming();
    std::string own = *content;
    state.ResumeTiming();
    auto model =
        std::make_unique<qv::qv_gbxml_model>(qv::qv_read_gbxml_bytes("bench.xml", std::move(own)));
    benchmark::DoNotOptimize(model->root);
    state.PauseTiming();
    model.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(content->size()));
}

std::vector<fs::path> find_models() {
  const char* named = std::getenv("QV_SHARED_DATA");
  const fs::path shared = named != nullptr ? named : QV_SOURCE_DIR "/../shared/data";
  std::vector<fs::path> models;
  for (const fs::path& folder : {fs::path(QV_SOURCE_DIR "/samples"), shared / "gbxml"}) {
    std::error_code ignored;
    for (const auto& entry : fs::recursive_directory_iterator(folder, ignored))
      if (entry.path().extension() == ".xml") models.push_back(entry.path());
  }
  std::sort(models.begin(), models.end());
  return models;
}

const bool registered = [] {
  for (const fs::path& path : find_models()) {
    const bytes content = read_file(path);
    const std::string name = "read/gbxml/" + path.stem().string();
    benchmark::RegisterBenchmark((name + "/qv").c_str(), read, content)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((name + "/kernel").c_str(), parse, content)
        ->Unit(benchmark::kMillisecond);
  }
  return true;
}();

}  // namespace
