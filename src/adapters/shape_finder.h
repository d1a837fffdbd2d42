#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "adapters/rewriter.h"
#include "adapters/shape_cache.h"
#include "adapters/sql_text.h"
#include "talm_flow/error.h"

namespace talm_flow::adapters {

/// From a statement text to what an engine has prepared for its shape.
/// @tparam Shape  what an adapter keeps of a shape; it has a member `rewritten` of type `Rewritten`.
template <typename Shape>
class ShapeFinder {
 public:
  using Pointer = std::shared_ptr<Shape>;

  /// What only the engine can do.
  class Engine {
   public:
    virtual TableKeys& Keys() = 0;
    /// Prepares `shape.rewritten`. @returns false when the engine does not take it with a parameter for each literal.
    /// @param text  the text that all this is for.
    virtual bool Prepare(Shape& shape, std::string_view text, const std::vector<Literal>& literals) = 0;
    /// Why the last `Prepare` gave false.
    [[nodiscard]] virtual DatabaseError Refusal(std::string_view text) = 0;

   protected:
    ~Engine() = default;
  };

  /// How many shapes are kept prepared.
  static constexpr std::size_t kShapes = 256;

  /// @param dialect, engine  outlive this object.
  ShapeFinder(const Dialect& dialect, Engine& engine) : dialect_(dialect), engine_(engine) {}

  /// The shape of a text; `literals` are then those that its marks stand for.
  /// @throws DatabaseError  the text holds more or less than one statement, or the engine does not take it.
  Pointer Find(std::string_view text) {
    if (const Pointer* const follower = shapes_.Follow(text, scanned_.literals)) return *follower;
    scanned_.Scan(text);
    if (scanned_.unterminated) RefuseUnterminated(text);
    const Pointer* const known = shapes_.Find(scanned_.shape);
    if (known == nullptr) return Analyse(text);
    Pointer shape = *known;
    return shape->rewritten.literals_inline ? FindInline(text, *shape) : shape;
  }

  /// The shape of a statement of the adapter's own, in the engine's dialect and with the engine's marks.
  Pointer Own(std::string_view text) {
    if (const Pointer* const known = shapes_.Find(text)) return *known;
    auto shape = std::make_shared<Shape>();
    shape->rewritten.text = text;
    shape->rewritten.kind = StatementKind::kChange;
    if (!engine_.Prepare(*shape, text, {})) throw engine_.Refusal(text);
    return shapes_.Insert(text, std::move(shape));
  }

  /// Of the text found last; they point into it.
  [[nodiscard]] const std::vector<Literal>& literals() const { return scanned_.literals; }

  /// The shape found last proved wrong: it will be analysed anew.
  void Forget(const Shape& shape) {
    if (shape.rewritten.literals_inline) shapes_.Erase(scanned_.shape);
    shapes_.Erase(shape);
  }
  void ForgetAll() { shapes_.Clear(); }

 private:
  /// Longer shapes and longer texts with literals in them are seldom seen twice.
  static constexpr std::size_t kLongestKept = std::size_t{16} * 1024;

  static bool IsKept(const Shape& shape, std::string_view key) {
    return shape.rewritten.kind != StatementKind::kOther && key.size() <= kLongestKept;
  }

  [[noreturn]] void RefuseUnterminated(std::string_view text) {
    // The engine's own words for it, if it has any.
    Shape as_it_is;
    as_it_is.rewritten.text = text;
    if (!engine_.Prepare(as_it_is, text, {})) throw engine_.Refusal(text);
    throw DatabaseError("a quote is not closed", std::string(text));
  }

  Pointer Analyse(std::string_view text) {
    if (scanned_.shape.find('\0') != std::string::npos) {
      throw DatabaseError("a statement text holds no NUL character outside of quotes", std::string(text));
    }
    if (HoldsNoStatement(scanned_.shape)) throw DatabaseError("the text holds no statement", std::string(text));
    ShapePattern pattern(scanned_);
    auto shape = std::make_shared<Shape>();
    shape->rewritten = Rewrite(scanned_.shape, dialect_, engine_.Keys());
    Pointer to_run = shape;
    if (!shape->rewritten.literals_inline && !engine_.Prepare(*shape, text, scanned_.literals)) {
      if (scanned_.literals.empty()) throw engine_.Refusal(text);
      // Where the engine takes no parameter it may still take a literal; if not, its message speaks of the literal.
      shape->rewritten.literals_inline = true;
    }
    if (shape->rewritten.literals_inline) to_run = FindInline(text, *shape);
    if (IsKept(*shape, scanned_.shape)) {
      if (shape->rewritten.literals_inline) pattern = {};
      shapes_.Insert(scanned_.shape, std::move(shape), std::move(pattern));
    }
    return to_run;
  }

  Pointer FindInline(std::string_view text, const Shape& with_marks) {
    const bool kept = IsKept(with_marks, text);
    const Pointer* const known = kept ? shapes_.Find(text) : nullptr;
    Pointer shape = known != nullptr ? *known : std::make_shared<Shape>();
    if (known == nullptr) {
      shape->rewritten = with_marks.rewritten;
      shape->rewritten.text = LiteralsIn(with_marks.rewritten, text);
      shape->rewritten.marks.clear();
      if (!engine_.Prepare(*shape, text, {})) throw engine_.Refusal(text);
      if (kept) shapes_.Insert(text, shape);
    }
    scanned_.literals.clear();  // nothing is left to bind
    return shape;
  }

  std::string LiteralsIn(const Rewritten& rewritten, std::string_view text) const {
    try {
      return WithLiterals(rewritten, scanned_.literals, dialect_);
    } catch (const DatabaseError& error) {
      throw DatabaseError(error.what(), std::string(text));
    }
  }

  const Dialect& dialect_;
  Engine& engine_;
  ShapeCache<Shape> shapes_{kShapes};
  ScannedText scanned_;
};

}  // namespace talm_flow::adapters
