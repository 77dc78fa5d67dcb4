#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "kelm/kernel/containers/sequence/SequenceRef.h"

/// What the behaviour suite drives: any sequence whose values it can see as small numbers. Iterator positions
/// are told as distances from the beginning.
namespace sequence_suite {

class Subject {
 public:
  virtual ~Subject() = default;

  /// All values, walked with iterators.
  virtual std::vector<int> contents() = 0;
  /// All values in order, walked from the end.
  virtual std::vector<int> contentsFromEnd() = 0;
  /// All values, fetched in blocks.
  virtual std::vector<int> contentsInBlocks() = 0;
  virtual int size() = 0;
  virtual bool empty() = 0;
  virtual int at(int aIndex) = 0;
  virtual int front() = 0;
  virtual int back() = 0;
  virtual bool contains(int aValue) = 0;
  /// Index of the first such value from an index on, or -1.
  virtual int indexOf(int aValue, int aFrom) = 0;
  /// Another number after each change.
  virtual std::uint64_t stamp() = 0;
  virtual void clear() = 0;
  virtual void push_back(int aValue) = 0;
  virtual void push_front(int aValue) = 0;
  virtual void pop_back() = 0;
  virtual void pop_front() = 0;
  virtual void insert(int aIndex, int aValue) = 0;
  virtual void erase(int aIndex) = 0;
  virtual void replace(int aIndex, int aValue) = 0;
  virtual int removeAll(int aValue) = 0;
  /// Moves a value to another index, the others closing up.
  virtual void move(int aFrom, int aTo) = 0;
  /// These answer where the returned iterator stands.
  virtual int insertAt(int aPosition, int aValue) = 0;
  virtual int eraseAt(int aPosition) = 0;
  virtual int eraseRange(int aFirst, int aLast) = 0;
  /// Copy-on-write sequences begin to share their data here, and check what they shared before.
  virtual void share() {}
};

/// One way to make a sequence: a row of the suite.
struct Kind {
  std::string fName;
  bool fIsUnique;
  /// A new, empty sequence.
  std::function<std::unique_ptr<Subject>()> fMake;
};

/// A sequence behind a typed handle. `aKept` lives as long as the subject.
template <class T>
class HandleSubject : public Subject {
 public:
  HandleSubject(Kelm::Sequence<T> aSequence, std::function<T(int)> aToValue,
                std::function<int(T const&)> aToNumber, std::shared_ptr<void> aKept = nullptr)
      : fKept(std::move(aKept)),
        fSequence(std::move(aSequence)),
        fToValue(std::move(aToValue)),
        fToNumber(std::move(aToNumber)) {}

  std::vector<int> contents() override {
    std::vector<int> result;
    auto const end = fSequence.end();
    for (auto at = fSequence.begin(); at != end; at.next()) result.push_back(fToNumber(at.current()));
    return result;
  }
  std::vector<int> contentsFromEnd() override {
    std::vector<int> result;
    auto const begin = fSequence.begin();
    for (auto at = fSequence.end(); at != begin;) {
      at.previous();
      result.insert(result.begin(), fToNumber(at.current()));
    }
    return result;
  }
  std::vector<int> contentsInBlocks() override {
    std::vector<int> result;
    for (T const& value : fSequence.values()) result.push_back(fToNumber(value));
    return result;
  }
  int size() override { return fSequence.size(); }
  bool empty() override { return fSequence.empty(); }
  int at(int aIndex) override { return fToNumber(fSequence.at(aIndex)); }
  int front() override { return fToNumber(fSequence.front()); }
  int back() override { return fToNumber(fSequence.back()); }
  bool contains(int aValue) override { return fSequence.contains(fToValue(aValue)); }
  int indexOf(int aValue, int aFrom) override {
    return fSequence.get()->indexOf(fSequence.getDeviant(),
                                    Kelm::Generic::RefAccess<T>::make(fToValue(aValue)), aFrom);
  }
  std::uint64_t stamp() override { return fSequence.get()->stamp(fSequence.getDeviant()); }
  void clear() override { fSequence.clear(); }
  void push_back(int aValue) override { fSequence.push_back(fToValue(aValue)); }
  void push_front(int aValue) override { fSequence.push_front(fToValue(aValue)); }
  void pop_back() override { fSequence.pop_back(); }
  void pop_front() override { fSequence.pop_front(); }
  void insert(int aIndex, int aValue) override { fSequence.insert(aIndex, fToValue(aValue)); }
  void erase(int aIndex) override { fSequence.erase(aIndex); }
  void replace(int aIndex, int aValue) override { fSequence.replace(aIndex, fToValue(aValue)); }
  int removeAll(int aValue) override { return fSequence.removeAll(fToValue(aValue)); }
  void move(int aFrom, int aTo) override {
    std::vector<int> from{aFrom};
    std::vector<int> to{aTo};
    for (int at = aFrom; at != aTo; at += aFrom < aTo ? 1 : -1) {
      from.push_back(at + (aFrom < aTo ? 1 : -1));
      to.push_back(at);
    }
    fSequence.get()->generic_rearrange(fSequence.getDeviant(), from, to);
  }
  int insertAt(int aPosition, int aValue) override {
    return distance(fSequence.insert(position(aPosition), fToValue(aValue)));
  }
  int eraseAt(int aPosition) override { return distance(fSequence.erase(position(aPosition))); }
  int eraseRange(int aFirst, int aLast) override {
    return distance(fSequence.erase(position(aFirst), position(aLast)));
  }

  Kelm::Sequence<T> const& handle() const { return fSequence; }

 private:
  Kelm::Iterator<T> position(int aPosition) const {
    auto at = fSequence.begin();
    for (int i = 0; i < aPosition; ++i) at.next();
    return at;
  }
  int distance(Kelm::Iterator<T> const& aPosition) const {
    int steps = 0;
    for (auto at = fSequence.begin(); at != aPosition; at.next()) ++steps;
    return steps;
  }

  std::shared_ptr<void> fKept;
  Kelm::Sequence<T> fSequence;
  std::function<T(int)> fToValue;
  std::function<int(T const&)> fToNumber;
};

/// The plain model: what a sequence means, on a vector of numbers.
class ModelSubject : public Subject {
 public:
  explicit ModelSubject(bool aIsUnique) : fIsUnique(aIsUnique) {}

  std::vector<int> contents() override { return fValues; }
  std::vector<int> contentsFromEnd() override { return fValues; }
  std::vector<int> contentsInBlocks() override { return fValues; }
  int size() override { return static_cast<int>(fValues.size()); }
  bool empty() override { return fValues.empty(); }
  int at(int aIndex) override { return fValues[checked(aIndex, size())]; }
  int front() override { return notEmpty().front(); }
  int back() override { return notEmpty().back(); }
  bool contains(int aValue) override { return find(aValue) < size(); }
  int indexOf(int aValue, int aFrom) override {
    int const found = find(aValue, aFrom);
    return found < size() ? found : -1;
  }
  std::uint64_t stamp() override { return ++fStamps; }
  void clear() override { fValues.clear(); }
  void push_back(int aValue) override { insertAt(size(), aValue); }
  void push_front(int aValue) override { insertAt(0, aValue); }
  void pop_back() override { notEmpty().pop_back(); }
  void pop_front() override { notEmpty().erase(fValues.begin()); }
  void insert(int aIndex, int aValue) override { insertAt(checked(aIndex, size() + 1), aValue); }
  void erase(int aIndex) override { fValues.erase(fValues.begin() + checked(aIndex, size())); }
  void replace(int aIndex, int aValue) override {
    int& element = fValues[checked(aIndex, size())];
    if (!fIsUnique || !contains(aValue)) element = aValue;
  }
  int removeAll(int aValue) override { return static_cast<int>(std::erase(fValues, aValue)); }
  void move(int aFrom, int aTo) override {
    int const value = fValues[checked(aFrom, size())];
    checked(aTo, size());
    fValues.erase(fValues.begin() + aFrom);
    fValues.insert(fValues.begin() + aTo, value);
  }
  int insertAt(int aPosition, int aValue) override {
    if (fIsUnique && contains(aValue)) return find(aValue);
    fValues.insert(fValues.begin() + position(aPosition, size() + 1), aValue);
    return aPosition;
  }
  int eraseAt(int aPosition) override {
    fValues.erase(fValues.begin() + position(aPosition, size()));
    return aPosition;
  }
  int eraseRange(int aFirst, int aLast) override {
    position(aLast, size() + 1);
    fValues.erase(fValues.begin() + position(aFirst, aLast + 1), fValues.begin() + aLast);
    return aFirst;
  }

 private:
  static int checked(int aIndex, int aLimit) {
    if (aIndex < 0) throw std::runtime_error("sequence index must be positive");
    return position(aIndex, aLimit);
  }
  static int position(int aPosition, int aLimit) {
    if (aPosition >= aLimit) throw std::runtime_error("sequence index out of bounds");
    return aPosition;
  }
  std::vector<int>& notEmpty() {
    if (fValues.empty()) throw std::runtime_error("sequence is empty");
    return fValues;
  }
  int find(int aValue, int aFrom = 0) {
    int at = aFrom;
    while (at < size() && fValues[at] != aValue) ++at;
    return at;
  }

  bool fIsUnique;
  std::vector<int> fValues;
  std::uint64_t fStamps = 0;
};

}  // namespace sequence_suite
