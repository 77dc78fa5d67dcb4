#pragma once

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <string>
#include <vector>

/// The native side of the test package: things that hold values of each kind and lists of one another.
namespace demo {

struct Thing;
void intrusive_ptr_add_ref(Thing* thing);
void intrusive_ptr_release(Thing* thing);
using ThingPtr = boost::intrusive_ptr<Thing>;

/// One of the two ways in which a script sees a thing; its address is the native id.
struct View {
  Thing* fThing;
  bool fIsReadOnly;
};

/// A list of things; its address is the native id.
struct List {
  std::vector<ThingPtr> fThings;
  Thing* fOwner = nullptr;  ///< null for a list that belongs to scripts alone
};

struct Thing {
  explicit Thing(std::u16string text) : fText(std::move(text)) { ++sLiving; }
  ~Thing() { --sLiving; }

  View fViews[2] = {{this, false}, {this, true}};
  int fCount = 0;
  std::u16string fText;
  bool fFlag = false;
  int fNumber = 0;
  std::u16string fNatural;
  std::vector<bool> fMaybe;
  std::vector<int> fNumbers;
  ThingPtr fOther;
  int fColor = 0;
  List fParts{{}, this};

  static inline int sLiving = 0;
};

inline void intrusive_ptr_add_ref(Thing* thing) { ++thing->fCount; }
inline void intrusive_ptr_release(Thing* thing) {
  if (--thing->fCount == 0) delete thing;
}

}  // namespace demo
