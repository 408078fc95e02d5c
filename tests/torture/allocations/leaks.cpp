// SPDX-License-Identifier: MIT
#include "torture/allocations/leaks.h"

#include <dlfcn.h>

#include <cstdio>
#include <sstream>
#include <utility>

#include "torture/support/run.h"

namespace orb::torture {
namespace {

std::string baseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// The functions at an address, those inlined first, as addr2line names them.
std::vector<std::string> functionsAt(void* address) {
  Dl_info info{};
  if (::dladdr(address, &info) == 0) return {"?"};
  const std::string object = baseName(info.dli_fname);
  std::ostringstream command;
  // The address is where the call returns to.
  command << "addr2line -Cfi -e '" << info.dli_fname << "' 0x" << std::hex
          << static_cast<char*>(address) - static_cast<char*>(info.dli_fbase) - 1;
  std::vector<std::string> functions;
  FILE* pipe = ::popen(command.str().c_str(), "r");
  char line[4096];
  for (bool isName = true; pipe != nullptr && std::fgets(line, sizeof line, pipe);
       isName = !isName) {
    const std::string name(line, std::string(line).find('\n'));
    if (isName && name != "??") functions.push_back(object + ": " + name);
  }
  if (pipe != nullptr) ::pclose(pipe);
  if (!functions.empty()) return functions;
  return {object + ": " + (info.dli_sname == nullptr ? "?" : info.dli_sname)};
}

bool contains(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

/// Whether the function only allocates for the one that called it.
bool isAllocator(const std::string& function) {
  for (const char* object : {"torture_allocations", "libstdc++", "libc.so"}) {
    if (contains(function, object)) return true;
  }
  const std::size_t at = function.find(": ") + 2;
  for (const char* start : {"operator new", "malloc", "calloc", "realloc", "memalign",
                            "std::", "void std::", "__gnu_cxx::", "boost::"}) {
    if (function.compare(at, std::string(start).size(), start) == 0) return true;
  }
  return contains(function, "make_unique<") || contains(function, "make_shared<") ||
         contains(function, "_Alloc_hider") || contains(function, "::allocate(");
}

/// Whether the message library, its templates and what it generates have to answer.
bool isOfMessages(const std::string& function) {
  return contains(function, "google::protobuf::") || contains(function, "libprotobuf") ||
         contains(function, "orb::client::KALDEX_");
}

}  // namespace

void Leaks::add(const std::vector<Block>& blocks, const std::string& where) {
  for (const Block& block : blocks) {
    std::string key = "?";
    std::string stack;
    bool isOurs = true;  // unless somebody else's frame is found
    bool isFound = false;
    for (void* address : block.stack) {
      auto& names = names_[address];
      if (names.empty()) names = functionsAt(address);
      for (const std::string& name : names) {
        stack += "\n      " + name;
        if (isFound || isAllocator(name)) continue;
        isFound = true;
        key = name;
        isOurs = contains(name, "libqxorbclient") && !isOfMessages(name);
      }
    }
    Place& place =
        places_.try_emplace(key, Place{0, where, stack, isOurs, false}).first->second;
    ++place.blocks;
  }
}

std::string Leaks::describe() const {
  std::string result;
  for (const auto& [key, place] : places_) {
    result += "left: " + grouped(place.blocks) + " blocks, " + key + ", first in " +
              place.firstWhere + "\n";
  }
  return result;
}

std::vector<std::string> Leaks::takeOurs() {
  std::vector<std::string> result;
  for (auto& [key, place] : places_) {
    if (!place.isOurs || std::exchange(place.isTaken, true)) continue;
    result.push_back("block left by " + key + " in " + place.firstWhere + place.stack);
  }
  return result;
}

}  // namespace orb::torture
