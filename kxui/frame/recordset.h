// Recordset: a disconnected, in-memory record set with the classic record-set library's
// interface, enumerations and error numbers.
//
// A row costs one Variant per field. Rows live in segments that double in size and
// never move, so positioning is O(1) and growing a large set copies nothing.
//
// A record set may instead be opened over a RowSource: its count is known when it opens
// and its rows are read in blocks when the cursor first reaches them, so a page of a
// long list reads the page and nothing else.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kxui/frame/object.h"
#include "kxui/frame/variant.h"

namespace kxui {

enum DataTypeEnum : int32_t {
  adEmpty = 0,
  adSmallInt = 2,
  adInteger = 3,
  adSingle = 4,
  adDouble = 5,
  adCurrency = 6,
  adDate = 7,
  adBSTR = 8,
  adError = 10,
  adBoolean = 11,
  adVariant = 12,
  adDecimal = 14,
  adTinyInt = 16,
  adUnsignedTinyInt = 17,
  adBigInt = 20,
  adNumeric = 131,
  adDBDate = 133,
  adDBTimeStamp = 135,
  adChar = 129,
  adWChar = 130,
  adVarChar = 200,
  adLongVarChar = 201,
  adVarWChar = 202,
  adLongVarWChar = 203,
};

enum FieldAttributeEnum : int32_t {
  adFldUnspecified = -1,
  adFldMayDefer = 0x2,
  adFldUpdatable = 0x4,
  adFldUnknownUpdatable = 0x8,
  adFldFixed = 0x10,
  adFldIsNullable = 0x20,
  adFldMayBeNull = 0x40,
  adFldLong = 0x80,
  adFldRowID = 0x100,
  adFldRowVersion = 0x200,
  adFldCacheDeferred = 0x1000,
  adFldKeyColumn = 0x8000,
};

enum CursorTypeEnum : int32_t {
  adOpenUnspecified = -1,
  adOpenForwardOnly = 0,
  adOpenKeyset = 1,
  adOpenDynamic = 2,
  adOpenStatic = 3,
};

enum CursorLocationEnum : int32_t {
  adUseNone = 1,
  adUseServer = 2,
  adUseClient = 3,
};

enum LockTypeEnum : int32_t {
  adLockUnspecified = -1,
  adLockReadOnly = 1,
  adLockPessimistic = 2,
  adLockOptimistic = 3,
  adLockBatchOptimistic = 4,
};

enum ObjectStateEnum : int32_t {
  adStateClosed = 0,
  adStateOpen = 1,
};

enum PositionEnum : int32_t {
  adPosUnknown = -1,
  adPosBOF = -2,
  adPosEOF = -3,
};

class Recordset;

// The rows of a record set opened over it, read on demand.
class RowSource {
 public:
  virtual ~RowSource() = default;
  // The number of rows; asked once, when the record set opens.
  virtual int64_t Count() = 0;
  // Appends the values of `count` rows from the 0-based row `first`, row after row, one
  // value per field in field order. Values are stored as if assigned to the fields. A
  // failure (thrown) reaches whoever moved the cursor there.
  virtual void Fetch(int64_t first, int64_t count, std::vector<Variant>& out) = 0;
};

// Definition of one column.
struct FieldInfo {
  std::string name;
  DataTypeEnum type = adVariant;
  int32_t defined_size = 0;
  int32_t attributes = adFldUnspecified;
  uint8_t precision = 0;
  uint8_t numeric_scale = 0;
};

// A handle on one field of a record set; valid while the record set lives and its
// field list is unchanged.
class Field {
 public:
  const std::string& Name() const;
  DataTypeEnum Type() const;
  int32_t DefinedSize() const;
  int32_t Attributes() const;
  uint8_t Precision() const;
  uint8_t NumericScale() const;
  // Settable until the record set is opened (3705 afterwards).
  void SetPrecision(uint8_t p);
  void SetNumericScale(uint8_t s);

  // The value on the current row: 3021 when there is none; a row just added reads Empty.
  const Variant& Value() const;
  // Coerces to the field's type with Variant rules (6, 13, 94 on failure); Null only
  // where the attributes allow it (3219 otherwise); text longer than DefinedSize code
  // points fails with 3367 rather than being cut.
  void SetValue(Variant v);

  int32_t index() const { return index_; }

 private:
  friend class Fields;
  friend class Recordset;
  Field(Recordset* rs, int32_t index) : rs_(rs), index_(index) {}
  Recordset* rs_;
  int32_t index_;
};

class Fields {
 public:
  // Before Open only (3705 when open). Name must be new (3367 is not used here: a
  // duplicate name fails with 3219).
  void Append(std::string name, DataTypeEnum type, int32_t defined_size = 0,
              int32_t attributes = adFldUnspecified);
  int32_t Count() const;
  // 3265 for an index out of range or an unknown name (names compare case-insensitively).
  Field Item(int32_t index) const;
  Field Item(std::string_view name) const;
  Field operator[](int32_t index) const { return Item(index); }
  Field operator[](std::string_view name) const { return Item(name); }
  // Index of a name, or nothing; for resolving columns once per call.
  std::optional<int32_t> find(std::string_view name) const;
  // Index of a name; 3265 when unknown.
  int32_t index_of(std::string_view name) const;
  const FieldInfo& info(int32_t index) const;

 private:
  friend class Recordset;
  explicit Fields(Recordset* rs) : rs_(rs) {}
  Recordset* rs_;
};

class Recordset : public Object {
 public:
  Recordset();
  ~Recordset() override;
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;

  Fields& GetFields() { return fields_; }
  const Fields& GetFields() const { return fields_; }
  // Shorthand for GetFields().Item(...).
  Field operator[](int32_t index) const { return fields_.Item(index); }
  Field operator[](std::string_view name) const { return fields_.Item(name); }

  CursorLocationEnum CursorLocation() const { return cursor_location_; }
  void SetCursorLocation(CursorLocationEnum c);

  // Opens the record set as a disconnected, in-memory set (every argument at its
  // default). 3705 when already open.
  void Open();
  // Opens over `source` (3001 when it is null or counts below zero): RecordCount is the
  // source's count, and rows are read from it as the cursor reaches them. Behaves as a
  // set filled by AddNew; the first change to it (AddNew, a value set) reads every row
  // not read yet and leaves the source.
  void Open(std::shared_ptr<RowSource> source);
  void Close();
  ObjectStateEnum State() const { return open_ ? adStateOpen : adStateClosed; }

  // Appends a row of Empty values and makes it current; a pending new row is committed
  // first.
  void AddNew();
  // Commits the pending new row (nothing to do when none is pending).
  void Update();

  void MoveFirst();
  // 3021 when already at EOF; moving past the last row sets EOF.
  void MoveNext();
  // 3021 when already at BOF.
  void MovePrevious();
  void MoveLast();

  bool IsBOF() const;  // `EOF` is a C library macro, hence the Is prefix on both.
  bool IsEOF() const;
  int32_t RecordCount() const;
  // 1-based position, or adPosBOF / adPosEOF / adPosUnknown (-1 on an empty set).
  int32_t AbsolutePosition() const;
  // 1..RecordCount; 3001 outside that range, except on an empty record set, which
  // accepts any position and stays at BOF and EOF.
  void SetAbsolutePosition(int32_t pos);

  // Makes room for `rows` rows in total, so that filling a set whose size is known
  // (a page, a copy) allocates once. Changes no content or position; 3001 when negative.
  void reserve(int32_t rows);

  // Fast paths for code that resolved its columns once: no name lookup.
  const Variant& value(int32_t col) const;
  void set_value(int32_t col, Variant v);

 private:
  friend class Field;
  friend class Fields;
  void require_open() const;
  void require_current() const;
  Variant coerce(int32_t col, Variant v) const;

  Fields fields_;
  std::vector<FieldInfo> infos_;
  Variant* row(int64_t r) const;
  // The current row, remembered while the cursor stays on it (rows never move).
  Variant* current_row() const;
  void release_rows() noexcept;
  // Value v as stored in field col (checked and converted).
  void store(Variant& cell, int32_t col, Variant v) const;

  // Rows read from a source, in blocks keyed by their first row; a block never moves.
  struct Block {
    int64_t rows = 0;
    std::vector<Variant> cells;
  };
  static constexpr int64_t kBlockRows = 64;
  static constexpr int64_t kMaxBlockRows = 65536;
  Variant* fetched_row(int64_t r) const;
  const Block& read_block(int64_t first, int64_t count) const;
  // Reads every row not read yet into the segments and drops the source.
  void materialize();
  std::shared_ptr<RowSource> source_;
  mutable std::map<int64_t, Block> blocks_;

  // Segment k holds kFirstSegmentRows << k rows; raw storage, rows constructed as added.
  static constexpr int64_t kFirstSegmentRows = 16;
  std::vector<Variant*> segments_;
  int64_t rows_ = 0;
  int64_t capacity_ = 0;  // rows the segments hold
  int64_t pos_ = -1;  // 0-based current row; -1 before the first, rows_ after the last
  mutable int64_t cached_pos_ = -1;
  mutable Variant* cached_row_ = nullptr;
  // Per field, fixed when the record set opens: the kind a value must have to be stored
  // as it is (kAnyKind: any), and the longest text that needs no counting.
  static constexpr uint8_t kAnyKind = 0xFF;
  std::vector<uint8_t> kinds_;
  std::vector<size_t> text_limits_;
  void fix_rules();
  bool open_ = false;
  bool pending_ = false;
  CursorLocationEnum cursor_location_ = adUseServer;
};

using RecordsetPtr = std::shared_ptr<Recordset>;

// A new, unopened record set with the column layout of `source` (name, type, defined
// size, attributes, then precision and numeric scale).
RecordsetPtr CloneRecordsetStructure(const Recordset& source);

}  // namespace kxui
