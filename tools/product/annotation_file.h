#pragma once

#include <memory>
#include <string>
#include <vector>

#include "product/utc_time.h"

struct CPLXMLNode;

/// An element of an annotation file in XML, with the elements in it by paths "a.b.c". What is
/// missing or no number is a std::runtime_error that names file and path.
class ANNOTATION {
 public:
  bool Has(const std::string& path) const;
  std::string Text(const std::string& path) const;
  double Number(const std::string& path) const;
  /// From 0 on.
  int Count(const std::string& path) const;
  UTC_TIME Time(const std::string& path) const;
  /// Numbers with blanks between them.
  std::vector<double> Numbers(const std::string& path) const;
  std::vector<double> Numbers(const std::string& path, std::size_t count) const;
  /// The elements of one name in a list; none where the list is empty. Throws where it is missing.
  std::vector<ANNOTATION> Children(const std::string& list, const std::string& name) const;

  [[noreturn]] void Refuse(const std::string& path, const std::string& reason) const;

 protected:
  ANNOTATION(std::string place, CPLXMLNode* node) : place_(std::move(place)), node_(node) {}

 private:
  std::string place_;  ///< file and path of this element
  CPLXMLNode* node_;
};

/// The whole file, on disk or where else GDAL reads files.
class ANNOTATION_FILE : public ANNOTATION {
 public:
  explicit ANNOTATION_FILE(const std::string& path);

 private:
  explicit ANNOTATION_FILE(const std::string& path, std::shared_ptr<CPLXMLNode> tree);

  std::shared_ptr<CPLXMLNode> tree_;
};
