#include "zeldb/plug_in.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include "zeldb/failure.h"

namespace zeldb {
namespace {

constexpr const char* kLibrary = "libzel_db_odbc_lib.so";

}  // namespace

PlugIn::PlugIn(const std::filesystem::path& library) {
  void* const handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    throw Failure(ExitCode::kUsage, fmt::format("driver plug-in: {}", dlerror()));
  }
  const auto factory = reinterpret_cast<decltype(&FactoryDriver)>(dlsym(handle, "FactoryDriver"));
  if (factory == nullptr) {
    throw Failure(ExitCode::kUsage,
                  fmt::format("driver plug-in: {} has no FactoryDriver", library.string()));
  }
  driver_.reset(factory("odbc"));
  if (!driver_ || driver_->initialize() != KORVEX::Zel::DB::kSuccess) {
    throw Failure(ExitCode::kUsage,
                  fmt::format("driver plug-in: {} makes no driver", library.string()));
  }
}

std::filesystem::path PlugIn::defaultLibrary() {
  const auto program = std::filesystem::read_symlink("/proc/self/exe");
  const auto tree = program.parent_path() / ZELDB_TO_PREFIX;
  const auto installed = tree / ZELDB_PLUGIN_FOLDER / kLibrary;
  // Before it is installed all libraries stand in one folder.
  return (std::filesystem::exists(installed) ? installed : tree / "lib" / kLibrary)
      .lexically_normal();
}

}  // namespace zeldb
