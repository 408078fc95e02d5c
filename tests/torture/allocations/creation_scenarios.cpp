// SPDX-License-Identifier: MIT
#include "support/array.h"
#include "torture/allocations/describe.h"
#include "torture/allocations/scenario.h"

namespace orb::torture {
namespace {

const std::size_t kExtents[] = {3, 2, 4};
const char* kNames[] = {"a", "a name too long to be held in place", "c"};
const char* kTexts[] = {"some text that takes memory", "", "short"};

struct Creator {
  const char* name;
  const char* on;
  orbArray (*create)();
};

const Creator kCreators[] = {
    {"orbCreateDoubleMatrix", "of 3 by 2",
     [] { return orbCreateDoubleMatrix(3, 2, orbCOMPLEX); }},
    {"orbCreateDoubleScalar", "of 1.5", [] { return orbCreateDoubleScalar(1.5); }},
    {"orbCreateLogicalArray", "of 3 by 2 by 4",
     [] { return orbCreateLogicalArray(3, kExtents); }},
    {"orbCreateLogicalMatrix", "of 3 by 2", [] { return orbCreateLogicalMatrix(3, 2); }},
    {"orbCreateLogicalScalar", "of true", [] { return orbCreateLogicalScalar(true); }},
    {"orbCreateCharArray", "of 3 by 2 by 4",
     [] { return orbCreateCharArray(3, kExtents); }},
    {"orbCreateString", "of a text", [] { return orbCreateString(kTexts[0]); }},
    {"orbCreateString", "of an empty text", [] { return orbCreateString(""); }},
    {"orbCreateCharMatrixFromStrings", "of three texts",
     [] { return orbCreateCharMatrixFromStrings(3, kTexts); }},
    {"orbCreateCellArray", "of 3 by 2 by 4",
     [] { return orbCreateCellArray(3, kExtents); }},
    {"orbCreateCellMatrix", "of 3 by 2", [] { return orbCreateCellMatrix(3, 2); }},
    {"orbCreateStructArray", "of 3 by 2 by 4",
     [] { return orbCreateStructArray(3, kExtents, 3, kNames); }},
    {"orbCreateStructMatrix", "of 3 by 2",
     [] { return orbCreateStructMatrix(3, 2, 3, kNames); }},
    {"orbCreateSparse", "of 3 by 2", [] { return orbCreateSparse(3, 2, 4, orbREAL); }},
    {"orbCreateSparse", "of 3 by 2 complex",
     [] { return orbCreateSparse(3, 2, 4, orbCOMPLEX); }},
    {"orbCreateSparseLogicalMatrix", "of 3 by 2",
     [] { return orbCreateSparseLogicalMatrix(3, 2, 4); }},
};

class Creation : public Situation {
 public:
  explicit Creation(std::function<orbArray()> create) : create_(std::move(create)) {}
  ~Creation() override { orbDestroyArray(made_); }

  void act() override {
    orbDestroyArray(made_);
    made_ = nullptr;
    made_ = create_();
  }
  std::string outcome() override { return made_ == nullptr ? "null" : describe(made_); }
  std::string kept() override { return ""; }

 private:
  const std::function<orbArray()> create_;
  orbArray made_ = nullptr;
};

void add(Scenarios& all, const std::string& function, const std::string& on,
         const std::function<orbArray()>& create) {
  all.push_back({function, on, Promise::kThrows, {}, [create] {
                   return std::make_unique<Creation>(create);
                 }});
}

}  // namespace

void addCreationScenarios(Scenarios& all) {
  for (const Creator& creator : kCreators) {
    add(all, creator.name, creator.on, creator.create);
  }
  for (int id = orbUINT8_CLASS; id <= orbDOUBLE_CLASS; ++id) {
    const auto classId = static_cast<orbClassID>(id);
    for (const orbComplexity flag : {orbREAL, orbCOMPLEX}) {
      const std::string on =
          "of class " + std::to_string(id) + (flag == orbCOMPLEX ? " complex" : "");
      add(all, "orbCreateNumericArray", on,
          [=] { return orbCreateNumericArray(3, kExtents, classId, flag); });
      add(all, "orbCreateNumericMatrix", on,
          [=] { return orbCreateNumericMatrix(30, 20, classId, flag); });
    }
  }
}

}  // namespace orb::torture
