#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

/// Value semantics for a container with a shared, counted payload. Whoever writes detaches first; reading
/// shares. The payload's count is atomic, so that wrappers on different threads can share one; a wrapper
/// itself stays on one thread at a time.
namespace Performance {

/// A container and how many wrappers share it. The shared empty data counts itself too, so that whoever uses
/// it detaches before a write and no count frees it.
template <class C>
struct COWWrapperTypedData {
  COWWrapperTypedData() = default;
  explicit COWWrapperTypedData(C const& aValue) : fValue(aValue) {}

  /// The empty data that all wrappers of `C` begin with. It lives to the end of the process.
  static COWWrapperTypedData* getSharedNull() {
    static COWWrapperTypedData shared_null{C()};
    return &shared_null;
  }

  std::atomic<std::int32_t> fCount{1};
  C fValue;
};

template <class C>
class COWDataAccessToken;

template <class C>
class COWWrapper {
 public:
  using Data = COWWrapperTypedData<C>;

  /// Refers to the shared empty data: costs no allocation.
  COWWrapper() : fData(Data::getSharedNull()) { fData->fCount.fetch_add(1); }
  /// Shares the payload.
  COWWrapper(COWWrapper const& aOther) noexcept : fData(aOther.fData) { fData->fCount.fetch_add(1); }
  COWWrapper& operator=(COWWrapper const&) = delete;
  virtual ~COWWrapper() { setData(nullptr); }

  /// True for the shared empty data too. What another thread shares may stop being shared at any time, but a
  /// payload that is not shared stays so until this wrapper is copied.
  bool isShared() const noexcept { return fData->fCount.load() != 1; }
  std::int32_t shareCount() const noexcept { return fData->fCount.load(); }
  /// Number of live tokens registered here.
  std::uint32_t accessCount() const noexcept { return fAccessCount; }

  /// The container for reading; never detaches. Good until the wrapper is written, swapped or ends.
  C const& read() const noexcept { return fData->fValue; }
  /// Gives the wrapper a payload of its own: copies all values of a shared one. When that fails nothing has
  /// changed.
  void detach_helper() {
    if (!isShared()) return;
    setData(new Data(fData->fValue));
  }
  /// The container for writing, detached; the token records the access until it ends.
  C& publicDataRef(COWDataAccessToken<C>& aToken) {
    if (isShared()) detach_helper();
    aToken.move(this);
    if (isShared()) detach_helper();
    return fData->fValue;
  }
  /// Exchanges payloads; tokens stay.
  void swap(COWWrapper& aOther) noexcept { std::swap(fData, aOther.fData); }

 protected:
  friend class COWDataAccessToken<C>;

  void setData(Data* aData) noexcept {
    if (aData == fData) return;
    if (fData->fCount.fetch_sub(1) - 1 < 1) delete fData;
    fData = aData;
  }

  Data* fData;
  std::uint32_t fAccessCount = 0;
};

/// Records write access to a wrapper while it lives, or until it is given to another one. It is a mark: it
/// keeps neither the wrapper alive nor anybody from writing.
template <class C>
class COWDataAccessToken {
 public:
  COWDataAccessToken() noexcept = default;
  COWDataAccessToken(COWDataAccessToken const&) = delete;
  COWDataAccessToken& operator=(COWDataAccessToken const&) = delete;
  ~COWDataAccessToken() { move(nullptr); }

 private:
  friend class COWWrapper<C>;

  void move(COWWrapper<C>* aOwner) noexcept {
    if (fOwner == aOwner) return;
    if (fOwner != nullptr) --fOwner->fAccessCount;
    fOwner = aOwner;
    if (fOwner != nullptr) ++fOwner->fAccessCount;
  }

  COWWrapper<C>* fOwner = nullptr;
};

/// A wrapper of a container.
template <class C>
class COWWrapperContainer : public COWWrapper<C> {
 public:
  bool empty() const noexcept { return this->read().empty(); }
  std::size_t size() const noexcept { return this->read().size(); }
};

/// A wrapper of a container with contiguous storage.
template <class C>
class COWWrapperContainerSequential : public COWWrapperContainer<C> {
  using Data = COWWrapperTypedData<C>;

 public:
  /// The container for writing, detached and with room for `aExtra` more values. When that fails nothing has
  /// changed, so what comes next need not fail for want of memory after the sharing is gone.
  C& detachWithRoom(std::size_t aExtra) {
    C& own = this->fData->fValue;
    std::size_t const wanted = own.size() + aExtra;
    if (!this->isShared()) {
      if (wanted > own.capacity()) own.reserve(std::max(wanted, 2 * own.capacity()));
      return own;
    }
    auto data = std::make_unique<Data>();
    data->fValue.reserve(wanted);
    data->fValue.insert(data->fValue.end(), own.begin(), own.end());
    this->setData(data.release());
    return this->fData->fValue;
  }
};

}  // namespace Performance
