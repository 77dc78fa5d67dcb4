// The members by which a sequence stands in front of another, for the inside of a class: SequenceProxy.h
// includes this, and so does every class that asks something before it hands on. That is told by functions of
// the class, bound when it is compiled, so that they cost nothing where they do nothing:
//
// - `reading(deviant)`, `changing(deviant)`, `adding(deviant)` raise to refuse, and answer what leads to the
//   sequence behind by `->` and lives until the operation is over;
// - `target()` is the sequence behind, for what needs no question;
// - `owned(iterator)` is the iterator with a count on this sequence.
//
// Not here are `splice`, `specialized_equal` and `specialized_assign`. Published members are marked for
// export, as a mark on the class does not reach inline members.

UMLMM_API Generic::Ref generic_at(Deviant const& aDeviant, int aIndex) const override {
  return reading(aDeviant)->generic_at(aDeviant, aIndex);
}
UMLMM_API Generic::Ref generic_front(Deviant const& aDeviant) const override {
  return reading(aDeviant)->generic_front(aDeviant);
}
UMLMM_API Generic::Ref generic_back(Deviant const& aDeviant) const override {
  return reading(aDeviant)->generic_back(aDeviant);
}
UMLMM_API Generic::IteratorPtr generic_begin(Deviant const& aDeviant) const override {
  return owned(reading(aDeviant)->generic_begin(aDeviant));
}
UMLMM_API Generic::IteratorPtr generic_end(Deviant const& aDeviant) const override {
  return owned(reading(aDeviant)->generic_end(aDeviant));
}
UMLMM_API int generic_size(Deviant const& aDeviant) const override {
  return reading(aDeviant)->generic_size(aDeviant);
}
UMLMM_API bool generic_contains(Deviant const& aDeviant, Generic::Ref aValue) const override {
  return reading(aDeviant)->generic_contains(aDeviant, std::move(aValue));
}
std::uint64_t stamp(Deviant const& aDeviant) const override { return reading(aDeviant)->stamp(aDeviant); }
int readBlock(Deviant const& aDeviant, int aIndex, int aCount, Generic::Loan* aOut) const override {
  return reading(aDeviant)->readBlock(aDeviant, aIndex, aCount, aOut);
}
int indexOf(Deviant const& aDeviant, Generic::Ref const& aValue, int aFrom) const override {
  return reading(aDeviant)->indexOf(aDeviant, aValue, aFrom);
}

UMLMM_API void generic_clear(Deviant const& aDeviant) override {
  changing(aDeviant)->generic_clear(aDeviant);
}
UMLMM_API void generic_erase(Deviant const& aDeviant, int aIndex) override {
  changing(aDeviant)->generic_erase(aDeviant, aIndex);
}
UMLMM_API Generic::IteratorPtr generic_erase(Deviant const& aDeviant,
                                             Generic::IteratorIntf const* aPosition) override {
  return owned(changing(aDeviant)->generic_erase(aDeviant, aPosition));
}
UMLMM_API Generic::IteratorPtr generic_erase(Deviant const& aDeviant, Generic::IteratorIntf const* aFirst,
                                             Generic::IteratorIntf const* aLast) override {
  return owned(changing(aDeviant)->generic_erase(aDeviant, aFirst, aLast));
}
UMLMM_API void generic_pop_back(Deviant const& aDeviant) override {
  changing(aDeviant)->generic_pop_back(aDeviant);
}
UMLMM_API void generic_pop_front(Deviant const& aDeviant) override {
  changing(aDeviant)->generic_pop_front(aDeviant);
}
UMLMM_API int generic_removeAll(Deviant const& aDeviant, Generic::Ref aValue) override {
  return changing(aDeviant)->generic_removeAll(aDeviant, std::move(aValue));
}
UMLMM_API void generic_replace(Deviant const& aDeviant, int aIndex, Generic::Ref aValue) override {
  changing(aDeviant)->generic_replace(aDeviant, aIndex, std::move(aValue));
}
void generic_rearrange(Deviant const& aDeviant, std::span<int const> aFrom,
                       std::span<int const> aTo) override {
  changing(aDeviant)->generic_rearrange(aDeviant, aFrom, aTo);
}

UMLMM_API void generic_insert(Deviant const& aDeviant, int aIndex, Generic::Ref aValue) override {
  adding(aDeviant)->generic_insert(aDeviant, aIndex, std::move(aValue));
}
UMLMM_API Generic::IteratorPtr generic_insert(Deviant const& aDeviant, Generic::IteratorIntf const* aPosition,
                                              Generic::Ref aValue) override {
  return owned(adding(aDeviant)->generic_insert(aDeviant, aPosition, std::move(aValue)));
}
UMLMM_API void generic_push_back(Deviant const& aDeviant, Generic::Ref aValue) override {
  adding(aDeviant)->generic_push_back(aDeviant, std::move(aValue));
}
UMLMM_API void generic_push_front(Deviant const& aDeviant, Generic::Ref aValue) override {
  adding(aDeviant)->generic_push_front(aDeviant, std::move(aValue));
}

bool isUnique() const override { return target().isUnique(); }
std::type_info const& valueType() const override { return target().valueType(); }
UMLMM_API char const* generic_getVeskName(bool aImmutable, bool aImmutableElements,
                                          char const* aName) const override {
  return target().generic_getVeskName(aImmutable, aImmutableElements, aName);
}
