#include "report/xlsm_package.h"

#include <zip.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <memory>
#include <system_error>

#include <pugixml.hpp>

#include "base/legacy_error.h"
#include "report/report_script.h"

namespace velmora {
namespace {

constexpr const char* kSharedStrings = "xl/sharedStrings.xml";

[[noreturn]] void Fail(const std::filesystem::path& path, const std::string& why) {
  throw LegacyError(ErrorNumber::InvalidData, path.string() + ": " + why);
}

struct ZipCloser {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
using ZipHandle = std::unique_ptr<zip_t, ZipCloser>;

ZipHandle OpenZip(const std::filesystem::path& path, int flags) {
  int error = 0;
  zip_t* archive = zip_open(path.c_str(), flags, &error);
  if (archive == nullptr) {
    zip_error_t detail;
    zip_error_init_with_code(&detail, error);
    const std::string why = zip_error_strerror(&detail);
    zip_error_fini(&detail);
    if (error == ZIP_ER_NOENT) throw LegacyError(ErrorNumber::FileNotFound, path.string() + ": " + why);
    Fail(path, "not a workbook (" + why + ")");
  }
  return ZipHandle(archive);
}

pugi::xml_document ParseXml(const XlsmPackage& package, std::string_view part) {
  pugi::xml_document document;
  const std::string& text = package.Part(part);
  const pugi::xml_parse_result parsed =
      document.load_buffer(text.data(), text.size(), pugi::parse_default | pugi::parse_declaration);
  if (!parsed) Fail(package.Path(), std::string(part) + ": " + parsed.description());
  return document;
}

// All text of an element's <t> descendants, leaving out phonetic runs.
std::string RichText(const pugi::xml_node& node) {
  std::string text;
  for (const pugi::xml_node& child : node.children()) {
    if (std::string_view(child.name()) == "t") text += child.text().get();
    else if (std::string_view(child.name()) == "r") text += child.child("t").text().get();
  }
  return text;
}

// "AB12" → column 28, row 12; false when the reference is not of that form.
bool SplitReference(std::string_view ref, std::int32_t& column, std::int32_t& row) {
  column = 0;
  std::size_t i = 0;
  for (; i < ref.size() && std::isalpha(static_cast<unsigned char>(ref[i])); ++i)
    column = column * 26 + (std::toupper(static_cast<unsigned char>(ref[i])) - 'A' + 1);
  if (column == 0 || i == ref.size()) return false;
  row = std::atoi(std::string(ref.substr(i)).c_str());
  return row > 0;
}

std::string CellText(const pugi::xml_node& cell, const std::vector<std::string>& shared) {
  const std::string_view type = cell.attribute("t").value();
  const char* value = cell.child("v").text().get();
  if (type == "inlineStr") return RichText(cell.child("is"));
  if (type == "s") {
    const std::size_t index = static_cast<std::size_t>(std::atol(value));
    return index < shared.size() ? shared[index] : std::string();
  }
  if (type == "b") return std::string_view(value) == "1" ? "True" : "False";
  if (type == "str" || type == "e" || *value == '\0') return value;
  return ScriptValue::FromNumber(std::strtod(value, nullptr)).ToText();
}

// Writes cells into a parsed sheet, texts into the shared strings when the workbook has them.
class SheetWriter {
 public:
  SheetWriter(pugi::xml_document& sheet, pugi::xml_document* shared)
      : data_(sheet.child("worksheet").child("sheetData")), dimension_(sheet.child("worksheet").child("dimension")),
        shared_(shared != nullptr ? shared->child("sst") : pugi::xml_node()) {
    for (pugi::xml_node row : data_.children("row")) rows_[row.attribute("r").as_int()] = row;
    if (shared_) uniqueCount_ = static_cast<std::int32_t>(std::distance(shared_.children("si").begin(),
                                                                         shared_.children("si").end()));
  }

  void Write(const CellWrite& write) {
    pugi::xml_node cell = CellNode(RowNode(write.Row), write);
    cell.remove_attribute("t");
    while (pugi::xml_node child = cell.first_child()) cell.remove_child(child);
    if (write.Text.empty()) return;
    if (write.Number) {
      cell.append_child("v").text().set(write.Text.c_str());
    } else if (shared_) {
      cell.append_attribute("t") = "s";
      pugi::xml_node text = shared_.append_child("si").append_child("t");
      text.append_attribute("xml:space") = "preserve";
      text.text().set(write.Text.c_str());
      cell.append_child("v").text().set(uniqueCount_++);
      ++addedStrings_;
    } else {
      cell.append_attribute("t") = "inlineStr";
      pugi::xml_node text = cell.append_child("is").append_child("t");
      text.append_attribute("xml:space") = "preserve";
      text.text().set(write.Text.c_str());
    }
    lastRow_ = std::max(lastRow_, write.Row);
    lastColumn_ = std::max(lastColumn_, write.Column);
  }

  // The dimension and the string counts follow what was written.
  void Finish() {
    if (shared_) {
      shared_.attribute("uniqueCount").set_value(uniqueCount_);
      if (pugi::xml_attribute count = shared_.attribute("count"))
        count.set_value(count.as_int() + addedStrings_);
    }
    if (!dimension_ || lastRow_ == 0) return;
    const std::string ref = dimension_.attribute("ref").value();
    const std::size_t colon = ref.find(':');
    std::int32_t column = 0, row = 0;
    if (SplitReference(colon == std::string::npos ? ref : ref.substr(colon + 1), column, row)) {
      lastRow_ = std::max(lastRow_, row);
      lastColumn_ = std::max(lastColumn_, column);
    }
    const std::string start = colon == std::string::npos ? (ref.empty() ? "A1" : ref) : ref.substr(0, colon);
    dimension_.attribute("ref").set_value((start + ":" + ColumnLetters(lastColumn_) + std::to_string(lastRow_)).c_str());
  }

 private:
  pugi::xml_node RowNode(std::int32_t row) {
    if (auto found = rows_.find(row); found != rows_.end()) return found->second;
    const auto after = rows_.upper_bound(row);
    pugi::xml_node node = after == rows_.end() ? data_.append_child("row") : data_.insert_child_before("row", after->second);
    node.append_attribute("r") = row;
    rows_[row] = node;
    return node;
  }

  static pugi::xml_node CellNode(pugi::xml_node row, const CellWrite& write) {
    const std::string ref = ColumnLetters(write.Column) + std::to_string(write.Row);
    // Cells come in row and column order, so a new cell usually goes last: no walk for it.
    std::int32_t lastColumn = 0, lastRow = 0;
    const pugi::xml_node last = row.last_child();
    if (!last || (SplitReference(last.attribute("r").value(), lastColumn, lastRow) && lastColumn < write.Column)) {
      pugi::xml_node added = row.append_child("c");
      added.append_attribute("r") = ref.c_str();
      return added;
    }
    for (pugi::xml_node cell : row.children("c")) {
      std::int32_t column = 0, r = 0;
      if (!SplitReference(cell.attribute("r").value(), column, r)) continue;
      if (column == write.Column) return cell;
      if (column > write.Column) {
        pugi::xml_node added = row.insert_child_before("c", cell);
        added.append_attribute("r") = ref.c_str();
        return added;
      }
    }
    pugi::xml_node added = row.append_child("c");
    added.append_attribute("r") = ref.c_str();
    return added;
  }

  pugi::xml_node data_;
  pugi::xml_node dimension_;
  pugi::xml_node shared_;
  std::map<std::int32_t, pugi::xml_node> rows_;
  std::int32_t uniqueCount_ = 0;
  std::int32_t addedStrings_ = 0;
  std::int32_t lastRow_ = 0;
  std::int32_t lastColumn_ = 0;
};

// Straight into one string: a report sheet is large enough for a stream's copies to show.
class StringWriter final : public pugi::xml_writer {
 public:
  void write(const void* data, std::size_t size) override { text.append(static_cast<const char*>(data), size); }
  std::string text;
};

std::string Serialise(const pugi::xml_document& document) {
  StringWriter out;
  document.save(out, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
  return std::move(out.text);
}

// The part is deleted and added again rather than replaced: libzip keeps a replaced entry at the
// default level when its method stays deflate, and a report sheet of 30,000 rows is tens of megabytes
// of XML, for which the fastest level takes a fraction of the time for a file a little larger.
void ReplacePart(zip_t* archive, const std::filesystem::path& path, const std::string& name, const std::string& bytes) {
  const zip_int64_t index = zip_name_locate(archive, name.c_str(), 0);
  if (index < 0 || zip_delete(archive, static_cast<zip_uint64_t>(index)) < 0)
    Fail(path, "cannot replace the part " + name);
  zip_source_t* source = zip_source_buffer(archive, bytes.data(), bytes.size(), 0);
  const zip_int64_t added = source != nullptr ? zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8) : -1;
  if (added < 0) {
    if (source != nullptr) zip_source_free(source);
    Fail(path, "cannot replace the part " + name + " (" + zip_strerror(archive) + ")");
  }
  zip_set_file_compression(archive, static_cast<zip_uint64_t>(added), ZIP_CM_DEFLATE, 1);
}

}  // namespace

XlsmPackage XlsmPackage::Open(const std::filesystem::path& path) {
  XlsmPackage package;
  package.path_ = path;
  ZipHandle archive = OpenZip(path, ZIP_RDONLY);
  const zip_int64_t count = zip_get_num_entries(archive.get(), 0);
  for (zip_int64_t i = 0; i < count; ++i) {
    const auto index = static_cast<zip_uint64_t>(i);
    zip_stat_t stat;
    if (zip_stat_index(archive.get(), index, 0, &stat) != 0) Fail(path, "unreadable zip entry");
    std::string bytes(static_cast<std::size_t>(stat.size), '\0');
    zip_file_t* file = zip_fopen_index(archive.get(), index, 0);
    const zip_int64_t read = file != nullptr ? zip_fread(file, bytes.data(), bytes.size()) : -1;
    if (file != nullptr) zip_fclose(file);
    if (read != static_cast<zip_int64_t>(bytes.size())) Fail(path, std::string("cannot read the part ") + stat.name);
    package.parts_[stat.name] = std::move(bytes);
  }
  if (!package.HasPart("xl/workbook.xml")) Fail(path, "no xl/workbook.xml: not a spreadsheet workbook");
  return package;
}

const std::string& XlsmPackage::Part(std::string_view name) const {
  const auto found = parts_.find(std::string(name));
  if (found == parts_.end()) Fail(path_, "no part " + std::string(name));
  return found->second;
}

std::string XlsmPackage::SheetPart(std::string_view sheetName) const {
  const pugi::xml_document workbook = ParseXml(*this, "xl/workbook.xml");
  std::string relation;
  for (const pugi::xml_node& sheet : workbook.child("workbook").child("sheets").children("sheet")) {
    if (sheetName != sheet.attribute("name").value()) continue;
    for (const pugi::xml_attribute& attribute : sheet.attributes())
      if (std::string_view(attribute.name()).ends_with(":id")) relation = attribute.value();
  }
  if (relation.empty()) return {};
  const pugi::xml_document relations = ParseXml(*this, "xl/_rels/workbook.xml.rels");
  for (const pugi::xml_node& link : relations.child("Relationships").children("Relationship")) {
    if (relation != link.attribute("Id").value()) continue;
    const std::string target = link.attribute("Target").value();
    return target.starts_with('/') ? target.substr(1) : "xl/" + target;
  }
  return {};
}

std::vector<std::string> XlsmPackage::SharedStrings() const {
  std::vector<std::string> strings;
  if (!HasPart(kSharedStrings)) return strings;
  const pugi::xml_document shared = ParseXml(*this, kSharedStrings);
  for (const pugi::xml_node& item : shared.child("sst").children("si")) strings.push_back(RichText(item));
  return strings;
}

SheetCells XlsmPackage::ReadCells(std::string_view sheetName, std::int32_t firstRow, std::int32_t lastRow,
                                  std::int32_t lastColumn) const {
  const std::string part = SheetPart(sheetName);
  if (part.empty()) Fail(path_, "no sheet named \"" + std::string(sheetName) + "\"");
  const pugi::xml_document sheet = ParseXml(*this, part);
  const std::vector<std::string> shared = SharedStrings();
  SheetCells cells;
  for (const pugi::xml_node& row : sheet.child("worksheet").child("sheetData").children("row")) {
    for (const pugi::xml_node& cell : row.children("c")) {
      std::int32_t column = 0, r = 0;
      if (!SplitReference(cell.attribute("r").value(), column, r)) continue;
      if (r < firstRow || r > lastRow || column > lastColumn) continue;
      cells[{r, column}] = CellText(cell, shared);
    }
  }
  return cells;
}

void WriteWorkbookCopy(const std::filesystem::path& source, const std::filesystem::path& target,
                       std::string_view sheetName, const std::vector<CellWrite>& cells) {
  const XlsmPackage package = XlsmPackage::Open(source);
  const std::string part = package.SheetPart(sheetName);
  if (part.empty()) Fail(source, "no sheet named \"" + std::string(sheetName) + "\" to write the table into");
  pugi::xml_document sheet = ParseXml(package, part);
  const bool hasShared = package.HasPart(kSharedStrings);
  pugi::xml_document shared;
  if (hasShared) shared = ParseXml(package, kSharedStrings);
  SheetWriter writer(sheet, hasShared ? &shared : nullptr);
  const auto before = [](const CellWrite& a, const CellWrite& b) {
    return std::pair(a.Row, a.Column) < std::pair(b.Row, b.Column);
  };
  if (std::is_sorted(cells.begin(), cells.end(), before)) {
    for (const CellWrite& write : cells) writer.Write(write);
  } else {
    std::vector<CellWrite> ordered = cells;
    std::stable_sort(ordered.begin(), ordered.end(), before);
    for (const CellWrite& write : ordered) writer.Write(write);
  }
  writer.Finish();
  const std::string sheetBytes = Serialise(sheet);
  const std::string sharedBytes = hasShared ? Serialise(shared) : std::string();

  const std::filesystem::path temp = target.parent_path() / (".~" + target.filename().string() + ".tmp");
  try {
    std::filesystem::copy_file(source, temp, std::filesystem::copy_options::overwrite_existing);
    ZipHandle archive = OpenZip(temp, 0);
    ReplacePart(archive.get(), temp, part, sheetBytes);
    if (hasShared) ReplacePart(archive.get(), temp, kSharedStrings, sharedBytes);
    if (zip_close(archive.get()) != 0) Fail(target, std::string("cannot write the workbook: ") + zip_strerror(archive.get()));
    archive.release();
    std::filesystem::rename(temp, target);
  } catch (const std::filesystem::filesystem_error& error) {
    std::error_code ignored;
    std::filesystem::remove(temp, ignored);
    throw LegacyError(ErrorNumber::PermissionDenied, target.string() + ": " + error.code().message());
  } catch (...) {
    std::error_code ignored;
    std::filesystem::remove(temp, ignored);
    throw;
  }
}

std::string ColumnLetters(std::int32_t column) {
  std::string letters;
  for (; column > 0; column = (column - 1) / 26)
    letters.insert(letters.begin(), static_cast<char>('A' + (column - 1) % 26));
  return letters;
}

}  // namespace velmora
