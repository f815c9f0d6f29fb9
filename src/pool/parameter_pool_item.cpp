#include "pool/parameter_pool_item.h"

#include <string_view>

std::string PARAMETER_POOL_ITEM::CommentLines(const LIST<STRING>& comments) {
  std::string lines;
  for (const STRING& comment : comments) {
    lines += '#';
    for (const char character : std::string_view(comment.Text())) {
      lines += character;
      if (character == '\n' || character == '\r') {
        lines += '#';
      }
    }
    lines += '\n';
  }
  return lines;
}
