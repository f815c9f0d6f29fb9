#pragma once

#include <span>
#include <typeinfo>

#include "base/array.h"
#include "base/error_enum_base.h"
#include "base/string.h"

namespace BASIC::TYPES {

/// One row of an enumeration's table; the row number is the id. The first row is the "-" of the
/// unset value and the last one a "-" sentinel, which `Last()` leaves out.
struct ENUM_ENTRY {
  const char* name;
  int value = 0;
  const char* description = "";
};

/// A value of a named, closed set: id, name and an integer that belongs to the entry.
class ENUM_BASE {
 public:
  /// Sets the value from a name, whatever its case; the first entry of that name wins.
  /// Throws ERROR_ENUM_BASE_INVALID_VALUE.
  virtual void Assign(const char* name) = 0;
  virtual ~ENUM_BASE() = default;

  /// Compare ids. Throw ERROR_ENUM_BASE_TYPE_MISMATCH for values of different classes.
  virtual bool operator==(const ENUM_BASE& other) const;
  virtual bool operator!=(const ENUM_BASE& other) const;

  /// Step to the next or previous entry; throw ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED.
  /// The limits are asymmetric on purpose: up to and onto the sentinel, down to id 0.
  virtual ENUM_BASE& operator++();
  virtual ENUM_BASE& operator--();
  /// The postfix forms yield the table's entry of the value before the step.
  virtual const ENUM_BASE& operator++(int);
  virtual const ENUM_BASE& operator--(int);

  /// Id of the last regular entry, the one before the sentinel.
  virtual int Last() const = 0;

  /// With `copy`, takes over the entry of that id and returns this object; without, returns the
  /// table's entry and changes nothing. Throws ERROR_ENUM_BASE_INVALID_ID.
  virtual const ENUM_BASE& Set(int id, bool copy = true) = 0;

  /// "Valid values are: 'first' 'second' ..." without the "-" entries at both ends.
  virtual STRING ValidNames() const = 0;

  int Id() const noexcept { return id_; }
  const char* Name() const noexcept { return name_.Text(); }
  int Value() const noexcept { return value_; }

 protected:
  ENUM_BASE() = default;
  ENUM_BASE(const ENUM_BASE&) = default;
  ENUM_BASE& operator=(const ENUM_BASE&) = default;

  void Fill(int id, const STRING& name, int value) {
    name_ = name;  // may throw, and then nothing has changed
    id_ = id;
    value_ = value;
  }

 private:
  int id_ = 0;
  STRING name_ = "-";
  int value_ = 0;
};

/// Whether two texts are equal after lower-casing both.
bool EqualIgnoringCase(const STRING& a, const STRING& b);

/// The list of valid names of a table, for `ENUM_BASE::ValidNames`.
STRING ListValidNames(std::span<const ENUM_ENTRY> entries);

/// The part of an enumeration class that follows from its table. `TYPE` derives from this and
/// provides `static std::span<const ENUM_ENTRY> Entries()`.
template <class TYPE>
class ENUMERATION : public ENUM_BASE {
 public:
  static constexpr int first_id = 0;

  void Assign(const char* name) override {
    SetFound(Find(name, [](const ENUM_ENTRY& entry) { return entry.name; }), name);
  }

  int Last() const override { return LastEntryId() - 1; }

  const ENUM_BASE& Set(int id, bool copy = true) override {
    if (id < first_id || id > LastEntryId()) {
      throw ERROR_ENUM_BASE_INVALID_ID();
    }
    const TYPE& entry = Table().Origin()[id];
    if (!copy) {
      return entry;
    }
    Fill(entry.Id(), entry.Name(), entry.Value());
    return *this;
  }

  STRING ValidNames() const override { return ListValidNames(TYPE::Entries()); }

 protected:
  ENUMERATION() = default;

  /// `Assign` for a class whose values also go by their descriptions: looks a text up by name
  /// first and by description second. Throws ERROR_ENUM_BASE_INVALID_VALUE.
  void AssignNameOrDescription(const char* text) {
    int id = Find(text, [](const ENUM_ENTRY& entry) { return entry.name; });
    if (id < first_id) {
      id = Find(text, [](const ENUM_ENTRY& entry) { return entry.description; });
    }
    SetFound(id, text);
  }

 private:
  /// Id of the first entry whose text, as picked by `text_of`, equals `text` whatever its case;
  /// -1 without one.
  template <class TEXT_OF>
  static int Find(const char* text, TEXT_OF text_of) {
    const std::span<const ENUM_ENTRY> entries = TYPE::Entries();
    for (std::size_t id = first_id; id < entries.size(); ++id) {
      if (EqualIgnoringCase(text_of(entries[id]), text)) {
        return static_cast<int>(id);
      }
    }
    return -1;
  }

  void SetFound(int id, const char* text) {
    if (id < first_id) {
      const char* class_name = typeid(TYPE).name();
      ERROR_ENUM_BASE_INVALID_VALUE::Throw(text, *class_name == '*' ? class_name + 1 : class_name,
                                           ValidNames());
    }
    Set(id, true);
  }

  static int LastEntryId() { return static_cast<int>(TYPE::Entries().size()) - 1; }

  /// The entries as objects of the class, built once on first use.
  static const ARRAY<TYPE>& Table() {
    static const ARRAY<TYPE> table = BuildTable();
    return table;
  }

  static ARRAY<TYPE> BuildTable() {
    const std::span<const ENUM_ENTRY> entries = TYPE::Entries();
    ARRAY<TYPE> table;
    if (table.Create(RANGE<int>(first_id, static_cast<int>(entries.size()))) != CONTAINER_OK) {
      throw ERROR_NO_MEMORY();
    }
    for (std::size_t id = 0; id < entries.size(); ++id) {
      TYPE& entry = table.Origin()[id];
      entry.Fill(static_cast<int>(id), entries[id].name, entries[id].value);
    }
    return table;
  }
};

}  // namespace BASIC::TYPES
