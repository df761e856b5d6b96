#include "kxui/frame/recordset.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <new>
#include <limits>
#include <string>
#include <utility>

#include "kxui/frame/errors.h"
#include "kxui/frame/failure.h"
#include "kxui/frame/text.h"

namespace kxui {
namespace {

constexpr std::string_view kSource = "Recordset";

// Text types whose DefinedSize limits the value; the long types never do.
bool is_bounded_text(DataTypeEnum t) {
  switch (t) {
    case adBSTR: case adChar: case adWChar: case adVarChar: case adVarWChar: return true;
    default: return false;
  }
}

// The kind a field of type t stores, or nothing for types that store values as given.
std::optional<Variant::Kind> stored_kind(DataTypeEnum t) {
  using K = Variant::Kind;
  switch (t) {
    case adInteger: return K::Int32;
    case adSmallInt: case adTinyInt: return K::Int16;
    case adDouble: case adSingle: case adDecimal: case adNumeric: return K::Double;
    case adCurrency: return K::Currency;
    case adDate: case adDBDate: case adDBTimeStamp: return K::Date;
    case adBoolean: return K::Boolean;
    case adBSTR: case adChar: case adWChar: case adVarChar: case adVarWChar:
    case adLongVarChar: case adLongVarWChar: return K::String;
    default: return std::nullopt;
  }
}

Variant convert(const Variant& v, Variant::Kind k) {
  using K = Variant::Kind;
  switch (k) {
    case K::Int32: return v.to_int32();
    case K::Int16: return v.to_int16();
    case K::Double: return v.to_double();
    case K::Currency: return v.to_currency();
    case K::Date: return v.to_date();
    case K::Boolean: return v.to_bool();
    case K::String: return v.to_string();
    default: return v;
  }
}

}  // namespace

// The checks every operation starts with; defined first so the callers below inline them.
inline void Recordset::require_open() const {
  if (!open_) [[unlikely]] fail(err::kObjectClosed, kSource);
}

inline void Recordset::require_current() const {
  if (!open_ || pos_ < 0 || pos_ >= rows_) [[unlikely]] {
    fail(open_ ? err::kNoCurrentRecord : err::kObjectClosed, kSource);
  }
}

// ---- Field ----

const std::string& Field::Name() const { return rs_->infos_[index_].name; }
DataTypeEnum Field::Type() const { return rs_->infos_[index_].type; }
int32_t Field::DefinedSize() const { return rs_->infos_[index_].defined_size; }
int32_t Field::Attributes() const { return rs_->infos_[index_].attributes; }
uint8_t Field::Precision() const { return rs_->infos_[index_].precision; }
uint8_t Field::NumericScale() const { return rs_->infos_[index_].numeric_scale; }

void Field::SetPrecision(uint8_t p) {
  if (rs_->open_) fail(err::kObjectOpen, kSource);
  rs_->infos_[index_].precision = p;
}

void Field::SetNumericScale(uint8_t s) {
  if (rs_->open_) fail(err::kObjectOpen, kSource);
  rs_->infos_[index_].numeric_scale = s;
}

const Variant& Field::Value() const { return rs_->value(index_); }
void Field::SetValue(Variant v) { rs_->set_value(index_, std::move(v)); }

// ---- Fields ----

void Fields::Append(std::string name, DataTypeEnum type, int32_t defined_size,
                    int32_t attributes) {
  if (rs_->open_) fail(err::kObjectOpen, kSource);
  if (find(name)) fail(err::kNotAllowed, kSource, name);
  if (defined_size < 0) fail(err::kArgumentOutOfRange, kSource, name);
  FieldInfo info;
  info.name = std::move(name);
  info.type = type;
  info.defined_size = defined_size;
  info.attributes = attributes;
  rs_->infos_.push_back(std::move(info));
}

int32_t Fields::Count() const { return static_cast<int32_t>(rs_->infos_.size()); }

Field Fields::Item(int32_t index) const {
  if (index < 0 || index >= Count()) fail(err::kItemNotFound, kSource, std::to_string(index));
  return Field(rs_, index);
}

Field Fields::Item(std::string_view name) const { return Field(rs_, index_of(name)); }

std::optional<int32_t> Fields::find(std::string_view name) const {
  const auto& infos = rs_->infos_;
  for (size_t i = 0; i < infos.size(); ++i) {
    if (text::iequals(infos[i].name, name)) return static_cast<int32_t>(i);
  }
  return std::nullopt;
}

int32_t Fields::index_of(std::string_view name) const {
  auto i = find(name);
  if (!i) fail(err::kItemNotFound, kSource, name);
  return *i;
}

const FieldInfo& Fields::info(int32_t index) const {
  if (index < 0 || index >= Count()) fail(err::kItemNotFound, kSource, std::to_string(index));
  return rs_->infos_[index];
}

// ---- Recordset ----

Recordset::Recordset() : fields_(this) {}

Recordset::~Recordset() { release_rows(); }

namespace {
// Segment and offset of row r when segment k holds base << k rows.
inline std::pair<size_t, size_t> locate(int64_t r, int64_t base) {
  const auto q = static_cast<uint64_t>(r / base + 1);
  const size_t k = static_cast<size_t>(std::bit_width(q) - 1);
  const int64_t first = base * ((int64_t{1} << k) - 1);
  return {k, static_cast<size_t>(r - first)};
}
}  // namespace

inline Variant* Recordset::row(int64_t r) const {
  if (source_) [[unlikely]] return fetched_row(r);
  auto [k, off] = locate(r, kFirstSegmentRows);
  return segments_[k] + off * infos_.size();
}

inline Variant* Recordset::current_row() const {
  if (cached_pos_ != pos_) {
    cached_row_ = row(pos_);
    cached_pos_ = pos_;
  }
  return cached_row_;
}

void Recordset::fix_rules() {
  kinds_.clear();
  text_limits_.clear();
  for (const FieldInfo& f : infos_) {
    const auto kind = stored_kind(f.type);
    kinds_.push_back(kind ? static_cast<uint8_t>(*kind) : kAnyKind);
    text_limits_.push_back(is_bounded_text(f.type) && f.defined_size > 0
                               ? static_cast<size_t>(f.defined_size)
                               : SIZE_MAX);
  }
}

void Recordset::release_rows() noexcept {
  cached_pos_ = -1;
  capacity_ = 0;
  const size_t width = infos_.size();
  if (!source_) {
    for (int64_t r = 0; r < rows_; ++r) std::destroy_n(row(r), width);
  }
  blocks_.clear();
  source_.reset();
  for (Variant* seg : segments_) ::operator delete(seg);
  segments_.clear();
  rows_ = 0;
}

Variant* Recordset::fetched_row(int64_t r) const {
  const size_t width = infos_.size();
  auto next = blocks_.upper_bound(r);
  const Block* before = next == blocks_.begin() ? nullptr : &std::prev(next)->second;
  const int64_t read_before = before ? std::prev(next)->first + before->rows : 0;
  if (r < read_before) {
    return const_cast<Variant*>(before->cells.data()) +
           static_cast<size_t>(r - std::prev(next)->first) * width;
  }
  // A block from r on, twice as long as the one before when the cursor walks on from it;
  // where the next block read or the last row comes first, the block reaches back from
  // there instead (a cursor moving backwards reads a full block each time).
  int64_t want = kBlockRows;
  if (before && read_before == r) want = std::min<int64_t>(before->rows * 2, kMaxBlockRows);
  int64_t end = std::min(rows_, r + want);
  if (next != blocks_.end()) end = std::min(end, next->first);
  const int64_t first = std::max(read_before, std::min(r, end - want));
  const Block& block = read_block(first, end - first);
  return const_cast<Variant*>(block.cells.data()) + static_cast<size_t>(r - first) * width;
}

const Recordset::Block& Recordset::read_block(int64_t first, int64_t count) const {
  const size_t width = infos_.size();
  std::vector<Variant> values;
  values.reserve(static_cast<size_t>(count) * width);
  source_->Fetch(first, count, values);
  if (values.size() != static_cast<size_t>(count) * width) {
    fail(err::kNoCurrentRecord, kSource, "the rows changed after they were counted");
  }
  Block block;
  block.rows = count;
  block.cells.resize(values.size());
  for (size_t i = 0; i < values.size(); ++i) {
    store(block.cells[i], static_cast<int32_t>(i % width), std::move(values[i]));
  }
  return blocks_.emplace(first, std::move(block)).first->second;
}

void Recordset::materialize() {
  const int64_t n = rows_;
  // Every gap between the blocks read so far, each in one read.
  for (int64_t r = 0; r < n;) {
    auto next = blocks_.lower_bound(r);
    if (next != blocks_.end() && next->first == r) {
      r += next->second.rows;
      continue;
    }
    const int64_t end = next == blocks_.end() ? n : next->first;
    read_block(r, end - r);
    r = end;
  }
  reserve(static_cast<int32_t>(n));  // the last step that can fail
  const size_t width = infos_.size();
  std::map<int64_t, Block> blocks = std::move(blocks_);
  blocks_.clear();
  source_.reset();
  cached_pos_ = -1;
  rows_ = 0;
  for (auto& entry : blocks) {
    Block& block = entry.second;
    for (int64_t i = 0; i < block.rows; ++i, ++rows_) {
      std::uninitialized_move_n(block.cells.data() + i * static_cast<int64_t>(width), width,
                                row(rows_));
    }
  }
}

void Recordset::SetCursorLocation(CursorLocationEnum c) {
  if (open_) fail(err::kObjectOpen, kSource);
  cursor_location_ = c;
}

void Recordset::Open() {
  if (open_) fail(err::kObjectOpen, kSource);
  release_rows();
  fix_rules();
  pos_ = -1;
  pending_ = false;
  open_ = true;
}

void Recordset::Open(std::shared_ptr<RowSource> source) {
  if (open_) fail(err::kObjectOpen, kSource);
  if (!source) fail(err::kArgumentOutOfRange, kSource, "no row source");
  const int64_t count = source->Count();
  if (count < 0 || count > std::numeric_limits<int32_t>::max()) {
    fail(err::kArgumentOutOfRange, kSource, std::to_string(count));
  }
  release_rows();
  fix_rules();
  source_ = std::move(source);
  rows_ = count;
  pos_ = -1;
  pending_ = false;
  open_ = true;
}

void Recordset::Close() {
  require_open();
  release_rows();
  pos_ = -1;
  pending_ = false;
  open_ = false;
}

void Recordset::AddNew() {
  require_open();
  if (source_) materialize();
  if (rows_ >= std::numeric_limits<int32_t>::max()) fail(err::kOutOfMemory, kSource);
  if (rows_ >= capacity_) reserve(static_cast<int32_t>(rows_ + 1));
  std::uninitialized_value_construct_n(row(rows_), infos_.size());
  pos_ = rows_++;
  pending_ = true;
}

void Recordset::reserve(int32_t rows) {
  if (rows < 0) fail(err::kArgumentOutOfRange, kSource, std::to_string(rows));
  if (rows == 0) return;
  const size_t needed = locate(rows - 1, kFirstSegmentRows).first + 1;
  segments_.reserve(needed);  // so that push_back below cannot throw after allocating
  while (segments_.size() < needed) {
    const size_t seg_rows = static_cast<size_t>(kFirstSegmentRows) << segments_.size();
    // Raw storage: pages are touched only as rows are added.
    segments_.push_back(static_cast<Variant*>(
        ::operator new(std::max<size_t>(1, seg_rows * infos_.size()) * sizeof(Variant))));
    capacity_ += static_cast<int64_t>(seg_rows);
  }
}

void Recordset::Update() {
  require_open();
  pending_ = false;
}

void Recordset::MoveFirst() {
  require_open();
  pending_ = false;
  pos_ = rows_ > 0 ? 0 : -1;
}

void Recordset::MoveNext() {
  require_open();
  pending_ = false;
  if (rows_ == 0 || pos_ >= rows_) fail(err::kNoCurrentRecord, kSource);
  ++pos_;
}

void Recordset::MovePrevious() {
  require_open();
  pending_ = false;
  if (rows_ == 0 || pos_ < 0) fail(err::kNoCurrentRecord, kSource);
  --pos_;
}

void Recordset::MoveLast() {
  require_open();
  pending_ = false;
  pos_ = rows_ - 1;
}

bool Recordset::IsBOF() const {
  require_open();
  return rows_ == 0 || pos_ < 0;
}

bool Recordset::IsEOF() const {
  require_open();
  return rows_ == 0 || pos_ >= rows_;
}

int32_t Recordset::RecordCount() const {
  require_open();
  return static_cast<int32_t>(rows_);
}

int32_t Recordset::AbsolutePosition() const {
  require_open();
  if (rows_ == 0) return adPosUnknown;
  if (pos_ < 0) return adPosBOF;
  if (pos_ >= rows_) return adPosEOF;
  return static_cast<int32_t>(pos_ + 1);
}

void Recordset::SetAbsolutePosition(int32_t pos) {
  require_open();
  pending_ = false;
  if (rows_ == 0) return;  // an empty set stays at BOF and EOF
  if (pos < 1 || pos > rows_) fail(err::kArgumentOutOfRange, kSource, std::to_string(pos));
  pos_ = pos - 1;
}

const Variant& Recordset::value(int32_t col) const {
  require_current();
  if (col < 0 || static_cast<size_t>(col) >= infos_.size()) {
    fail(err::kItemNotFound, kSource, std::to_string(col));
  }
  return current_row()[col];
}

void Recordset::set_value(int32_t col, Variant v) {
  require_current();
  if (col < 0 || static_cast<size_t>(col) >= infos_.size()) {
    fail(err::kItemNotFound, kSource, std::to_string(col));
  }
  if (source_) materialize();
  store(current_row()[col], col, std::move(v));
}

inline void Recordset::store(Variant& cell, int32_t col, Variant v) const {
  // A value already of the field's kind moves straight in; short text needs no counting.
  if (static_cast<uint8_t>(v.kind()) == kinds_[col] &&
      (!v.is_string() || v.get_string().size() <= text_limits_[col])) {
    cell = std::move(v);
    return;
  }
  cell = coerce(col, std::move(v));
}

Variant Recordset::coerce(int32_t col, Variant v) const {
  const FieldInfo& f = infos_[col];
  if (v.is_null()) {
    if ((f.attributes & (adFldIsNullable | adFldMayBeNull)) == 0) {
      fail(err::kNotAllowed, kSource, f.name);
    }
    return v;
  }
  const auto kind = stored_kind(f.type);
  if (!kind) return v;
  if (v.kind() != *kind) v = convert(v, *kind);
  if (is_bounded_text(f.type) && f.defined_size > 0) {
    const std::string_view s = v.get_string();
    // Bytes bound code points from above, so only long texts need counting.
    if (s.size() > static_cast<size_t>(f.defined_size) &&
        conv::utf8_length(s) > static_cast<size_t>(f.defined_size)) {
      fail(err::kDataTooLong, kSource, f.name);
    }
  }
  return v;
}

RecordsetPtr CloneRecordsetStructure(const Recordset& source) {
  auto rs = std::make_shared<Recordset>();
  const Fields& from = source.GetFields();
  Fields& to = rs->GetFields();
  for (int32_t i = 0; i < from.Count(); ++i) {
    const FieldInfo& f = from.info(i);
    to.Append(f.name, f.type, f.defined_size, f.attributes);
    Field added = to.Item(i);
    added.SetPrecision(f.precision);
    added.SetNumericScale(f.numeric_scale);
  }
  return rs;
}

}  // namespace kxui
