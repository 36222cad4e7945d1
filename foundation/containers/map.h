// The map family: chained hash maps of plain values.
//
//   SMapUInt32ToPtr   SMapShortToPtr    SMapPtrToShort     SMapLongToShort  SMapLongToLong
//   SMapStringToPtr   SMapStringToShort SMapStringToLong   (these may ignore letter case)
//
// A map never rehashes: choose the bucket count with InitHashTable (SuggestHashSize helps). The
// bucket array comes with the first insert; the last removal releases all memory and keeps the
// bucket count. Pointers are never owned. Maps are not copied by assignment: Copy does that.
//
// Entries are walked by ascending bucket and, within a bucket, from the newest to the oldest:
//
//   SMapPosition position = map.GetStartPosition();
//   while (position != 0) {
//     map.GetNextAssoc(position, key, value);
//   }
//
// An entry that was just handed out may be removed during the walk; adding ends it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "foundation/memory/node_blocks.h"
#include "foundation/text/string.h"
#include "platform/base/bytes.h"

namespace kivstore {

// The address of the node that comes next; 0 when the walk is done.
using SMapPosition = uintptr_t;
inline constexpr SMapPosition kBeforeFirst = UINTPTR_MAX;

// How keys hash and compare. IsExact is what a removal asks.
template <class Key>
struct SMapKeyRule {
  // Widening from 16 bits keeps the sign.
  static uint32_t Hash(Key key) { return static_cast<uint32_t>(key) >> 4; }
  static bool IsSame(Key a, Key b) { return a == b; }
  static bool IsExact(Key a, Key b) { return a == b; }
};

template <>
struct SMapKeyRule<void*> {
  static uint32_t Hash(const void* key) {
    const uint64_t address = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(key)) >> 4;
    return static_cast<uint32_t>(address ^ address >> 32);
  }
  static bool IsSame(const void* a, const void* b) { return a == b; }
  static bool IsExact(const void* a, const void* b) { return a == b; }
};

template <>
struct SMapKeyRule<SString> {
  uint32_t Hash(const SString& key) const {
    uint32_t hash = 0;
    for (const char c : key.View()) {
      const auto byte = static_cast<unsigned char>(c);
      const auto folded = static_cast<signed char>(ignoreCase ? FoldUpper(byte) : byte);
      hash = hash * 33 + static_cast<uint32_t>(folded);
    }
    return hash;
  }
  bool IsSame(const SString& a, const SString& b) const {
    return ignoreCase ? EqualBytesNoCase(a.View(), b.View()) : a == b;
  }
  static bool IsExact(const SString& a, const SString& b) { return a == b; }

  bool ignoreCase = false;
};

template <class Key, class Value>
class SMap {
 public:
  static constexpr uint32_t kDefaultBucketCount = 17;

  // blockSize: nodes allocated at once.
  explicit SMap(int32_t blockSize = 10, SMapKeyRule<Key> rule = {})
      : nodes(blockSize), rule(rule) {}
  virtual ~SMap() { RemoveAll(); }
  SMap(const SMap&) = delete;
  SMap& operator=(const SMap&) = delete;

  int32_t GetCount() const { return count; }
  uint32_t GetBucketCount() const { return bucketCount; }

  // `value` is set only if the key is found.
  bool Lookup(const Key& key, Value& value) const;
  bool Contains(const Key& key) const { return Find(key) != nullptr; }
  // A key that is not there gets an entry with value 0. When there is no memory for it, the
  // reference is to a value that belongs to no entry.
  Value& operator[](const Key& key);
  void SetAt(const Key& key, Value value) { (*this)[key] = value; }
  // True if it was there. Where letter case is ignored, only the stored spelling removes an entry.
  bool Remove(const Key& key);
  void RemoveAll();

  void Append(const SMap& other);
  void Copy(const SMap& other);  // with the bucket count
  // Empties the map and sets the bucket count, at least 1.
  void InitHashTable(uint32_t newBucketCount, bool allocate = true);

  SMapPosition GetStartPosition() const { return count > 0 ? kBeforeFirst : 0; }
  // The entry at the position, which moves on. Nothing at position 0.
  void GetNextAssoc(SMapPosition& position, Key& key, Value& value) const;

 protected:
  const SMapKeyRule<Key>& Rule() const { return rule; }
  int32_t GetBlockSize() const { return nodes.GetBlockSize(); }

 private:
  struct Node {
    Node* next = nullptr;
    uint32_t bucket = 0;
    Key key{};
    Value value{};
  };

  uint32_t BucketOf(const Key& key) const { return rule.Hash(key) % bucketCount; }
  Node* Find(const Key& key) const;
  Node* AddNode(const Key& key);
  bool AllocateBuckets();
  // The first node from this bucket on; null if there is none.
  Node* FirstFrom(uint32_t bucket) const;

  Node** buckets = nullptr;
  uint32_t bucketCount = kDefaultBucketCount;
  int32_t count = 0;
  SNodeBlocks<Node> nodes;  // freeList, blocks, blockSize
  [[no_unique_address]] SMapKeyRule<Key> rule;
};

template <class Value>
class SStringMap : public SMap<SString, Value> {
 public:
  explicit SStringMap(int32_t blockSize = 10, bool ignoreCase = false)
      : SMap<SString, Value>(blockSize, {ignoreCase}) {}
  // With the entries, the block size and the rule for letter case.
  SStringMap(const SStringMap& other) : SMap<SString, Value>(other.GetBlockSize(), other.Rule()) {
    this->Copy(other);
  }
  SStringMap& operator=(const SStringMap&) = delete;

  bool IgnoresCase() const { return this->Rule().ignoreCase; }
};

using SMapUInt32ToPtr = SMap<uint32_t, void*>;
using SMapShortToPtr = SMap<int16_t, void*>;
using SMapPtrToShort = SMap<void*, int16_t>;
using SMapLongToShort = SMap<int32_t, int16_t>;
using SMapLongToLong = SMap<int32_t, int32_t>;
using SMapStringToPtr = SStringMap<void*>;
using SMapStringToShort = SStringMap<int16_t>;
using SMapStringToLong = SStringMap<int32_t>;

template <class Key, class Value>
typename SMap<Key, Value>::Node* SMap<Key, Value>::Find(const Key& key) const {
  if (buckets == nullptr) {
    return nullptr;
  }
  Node* node = buckets[BucketOf(key)];
  while (node != nullptr && !rule.IsSame(node->key, key)) {
    node = node->next;
  }
  return node;
}

template <class Key, class Value>
bool SMap<Key, Value>::Lookup(const Key& key, Value& value) const {
  const Node* const node = Find(key);
  if (node == nullptr) {
    return false;
  }
  value = node->value;
  return true;
}

template <class Key, class Value>
Value& SMap<Key, Value>::operator[](const Key& key) {
  Node* node = Find(key);
  if (node == nullptr) {
    node = AddNode(key);
  }
  if (node == nullptr) {
    static Value lost;
    lost = Value{};
    return lost;
  }
  return node->value;
}

template <class Key, class Value>
typename SMap<Key, Value>::Node* SMap<Key, Value>::AddNode(const Key& key) {
  if (buckets == nullptr && !AllocateBuckets()) {
    return nullptr;
  }
  Node* const node = nodes.Take();
  if (node != nullptr) {
    node->bucket = BucketOf(key);
    node->key = key;
    node->next = buckets[node->bucket];
    buckets[node->bucket] = node;
    ++count;
  }
  return node;
}

template <class Key, class Value>
bool SMap<Key, Value>::AllocateBuckets() {
  buckets = static_cast<Node**>(std::calloc(bucketCount, sizeof(Node*)));
  return buckets != nullptr;
}

template <class Key, class Value>
bool SMap<Key, Value>::Remove(const Key& key) {
  if (buckets == nullptr) {
    return false;
  }
  Node** link = &buckets[BucketOf(key)];
  while (*link != nullptr && !rule.IsExact((*link)->key, key)) {
    link = &(*link)->next;
  }
  Node* const node = *link;
  if (node == nullptr) {
    return false;
  }
  *link = node->next;
  nodes.GiveBack(node);
  if (--count == 0) {
    RemoveAll();
  }
  return true;
}

template <class Key, class Value>
void SMap<Key, Value>::RemoveAll() {
  std::free(buckets);
  buckets = nullptr;
  count = 0;
  nodes.FreeAll();
}

template <class Key, class Value>
void SMap<Key, Value>::Append(const SMap& other) {
  if (&other == this) {
    return;
  }
  for (const Node* node = other.FirstFrom(0); node != nullptr;) {
    SetAt(node->key, node->value);
    node = node->next != nullptr ? node->next : other.FirstFrom(node->bucket + 1);
  }
}

template <class Key, class Value>
void SMap<Key, Value>::Copy(const SMap& other) {
  if (&other == this) {
    return;
  }
  InitHashTable(other.bucketCount, false);
  Append(other);
}

template <class Key, class Value>
void SMap<Key, Value>::InitHashTable(uint32_t newBucketCount, bool allocate) {
  RemoveAll();
  bucketCount = std::max(newBucketCount, uint32_t{1});
  if (allocate) {
    AllocateBuckets();
  }
}

template <class Key, class Value>
typename SMap<Key, Value>::Node* SMap<Key, Value>::FirstFrom(uint32_t bucket) const {
  if (buckets == nullptr) {
    return nullptr;
  }
  while (bucket < bucketCount && buckets[bucket] == nullptr) {
    ++bucket;
  }
  return bucket < bucketCount ? buckets[bucket] : nullptr;
}

template <class Key, class Value>
void SMap<Key, Value>::GetNextAssoc(SMapPosition& position, Key& key, Value& value) const {
  const Node* const node =
      position == kBeforeFirst ? FirstFrom(0) : reinterpret_cast<const Node*>(position);
  if (node == nullptr) {
    position = 0;
    return;
  }
  key = node->key;
  value = node->value;
  const Node* const next = node->next != nullptr ? node->next : FirstFrom(node->bucket + 1);
  position = reinterpret_cast<SMapPosition>(next);
}

}  // namespace kivstore
