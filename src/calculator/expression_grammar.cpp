#include "calculator/expression_grammar.h"

#include <algorithm>
#include <array>
#include <boost/spirit/include/classic_ast.hpp>
#include <boost/spirit/include/classic_core.hpp>
#include <charconv>
#include <cwctype>
#include <iterator>
#include <memory>
#include <vector>

#include "calculator/bracket_scan.h"
#include "calculator/expression_exceptions.h"
#include "calculator/expression_parser.h"
#include "values/variant.h"

namespace kestrel::calculator {
namespace {

/// What one parse keeps beside its way through the text.
struct ParseState {
  const wchar_t* begin = nullptr;
  const wchar_t* furthest = nullptr;  // the token that no rule got beyond
  const std::wstring* text = nullptr;
  std::size_t depth = 0;

  void Reach(const wchar_t* at) { furthest = std::max(furthest, at); }

  [[noreturn]] void Refuse(const std::wstring& what, const wchar_t* at) const {
    throw CExpressionPositionException(what, *text, static_cast<std::size_t>(at - begin));
  }
};

/// Walks over the marked text.
class Cursor {
 public:
  using iterator_category = std::forward_iterator_tag;
  using value_type = wchar_t;
  using difference_type = std::ptrdiff_t;
  using pointer = const wchar_t*;
  using reference = const wchar_t&;

  Cursor() = default;
  Cursor(const wchar_t* at, ParseState* state) : at_(at), state_(state) {}

  reference operator*() const { return *at_; }
  Cursor& operator++() {
    ++at_;
    return *this;
  }
  Cursor operator++(int) {
    const Cursor before = *this;
    ++*this;
    return before;
  }
  friend bool operator==(const Cursor& a, const Cursor& b) { return a.at_ == b.at_; }

  const wchar_t* At() const { return at_; }
  ParseState& State() const { return *state_; }

 private:
  const wchar_t* at_ = nullptr;
  ParseState* state_ = nullptr;
};

using NodeData = boost::spirit::classic::node_iter_data<Cursor, math::Variant<double>>;

}  // namespace
}  // namespace kestrel::calculator

namespace boost::spirit::classic {

/// The children of a node of ours. A copy takes them away from its source, as the copy of a tree_match does: the tree
/// policies copy only what they drop afterwards, and each bracket would copy all that stands inside once more. Most
/// matches have no nodes, so that these are one null pointer.
class ExpressionNodes {
 public:
  using value_type = tree_node<kestrel::calculator::NodeData>;
  using iterator = value_type*;
  using const_iterator = const value_type*;

  ExpressionNodes() = default;
  ExpressionNodes(const ExpressionNodes& other) noexcept : nodes_(std::move(other.nodes_)) {}
  ExpressionNodes(ExpressionNodes&& other) noexcept = default;
  ExpressionNodes& operator=(ExpressionNodes other) noexcept {
    nodes_.swap(other.nodes_);
    return *this;
  }
  ~ExpressionNodes() = default;

  inline iterator begin() const;
  inline iterator end() const;
  std::size_t size() const { return nodes_ ? nodes_->size() : 0; }
  bool empty() const { return size() == 0; }
  inline void push_back(const value_type& node);
  inline void insert(iterator position, iterator first, iterator last);
  /// The policies ask for exactly what they append next; to do as they say would move all nodes each time.
  void reserve(std::size_t) {}

 private:
  using List = std::vector<value_type>;

  /// Apart, so that the destructor of no nodes is inlined: matches come and go by the thousand.
  struct Recycle {
    [[gnu::noinline]] void operator()(List* nodes) const;
  };
  /// Lists that are empty, with their memory, for the next matches. Of a fixed number, so that a destructor can put one
  /// back without taking memory.
  struct Spares {
    std::array<std::unique_ptr<List>, 32> lists;
    std::size_t count = 0;
  };
  static Spares& SparesOfThread();
  void RequireList();

  mutable std::unique_ptr<List, Recycle> nodes_;
};

template <>
struct tree_node<kestrel::calculator::NodeData> {
  using parse_node_t = kestrel::calculator::NodeData;
  using children_t = ExpressionNodes;

  tree_node() = default;
  explicit tree_node(const parse_node_t& data) : value(data) {}

  parse_node_t value;
  children_t children;
};

ExpressionNodes::Spares& ExpressionNodes::SparesOfThread() {
  thread_local Spares spares;
  return spares;
}

void ExpressionNodes::Recycle::operator()(List* nodes) const {
  constexpr std::size_t kMostNodes = 32;  // longer lists are rare
  std::unique_ptr<List> list(nodes);
  list->clear();
  Spares& spares = SparesOfThread();
  if (list->capacity() <= kMostNodes && spares.count < spares.lists.size()) {
    spares.lists[spares.count++] = std::move(list);
  }
}

void ExpressionNodes::RequireList() {
  if (nodes_) return;
  Spares& spares = SparesOfThread();
  nodes_.reset(spares.count == 0 ? std::make_unique<List>().release() : spares.lists[--spares.count].release());
}

ExpressionNodes::iterator ExpressionNodes::begin() const { return nodes_ ? nodes_->data() : nullptr; }
ExpressionNodes::iterator ExpressionNodes::end() const { return nodes_ ? nodes_->data() + nodes_->size() : nullptr; }

void ExpressionNodes::push_back(const value_type& node) {
  RequireList();
  nodes_->push_back(node);
}

void ExpressionNodes::insert(iterator position, iterator first, iterator last) {
  if (first == last) return;
  const std::ptrdiff_t at = position - begin();
  RequireList();
  nodes_->insert(nodes_->begin() + at, first, last);
}

}  // namespace boost::spirit::classic

namespace kestrel::calculator {
namespace {

namespace classic = boost::spirit::classic;
using Value = math::Variant<double>;

bool IsSpace(wchar_t c) { return std::iswspace(static_cast<std::wint_t>(c)) != 0; }

/// Skips what iswspace takes for a space; most characters are settled without the call. It is asked before each token
/// and notes where that begins.
struct Space : classic::char_parser<Space> {
  using self_t = Space;

  static bool test(wchar_t c) { return (c <= L' ' || c > L'~') && IsSpace(c); }

  template <class S>
  typename classic::parser_result<Space, S>::type parse(const S& scan) const {
    scan.first.State().Reach(scan.first.At());
    return classic::char_parser<Space>::parse(scan);
  }
};

using Factory = classic::node_iter_data_factory<Value>;
using Scanner = classic::scanner<Cursor, classic::scanner_policies<classic::skip_parser_iteration_policy<Space>,
                                                                   classic::ast_match_policy<Cursor, Factory>>>;
using TreeNode = classic::tree_match<Cursor, Factory>::node_t;

template <ERule kRule>
using Rule = classic::rule<Scanner, classic::parser_context<>, classic::parser_tag<static_cast<int>(kRule)>>;

/// Counts how deep a rule stands in itself and ends the parse beyond kMaximalNesting, before the stack does.
template <class Subject>
class Nested : public classic::unary<Subject, classic::parser<Nested<Subject>>> {
  using Base = classic::unary<Subject, classic::parser<Nested<Subject>>>;

 public:
  explicit Nested(const Subject& subject) : Base(subject) {}

  template <class S>
  typename classic::parser_result<Nested, S>::type parse(const S& scan) const {
    ParseState& state = scan.first.State();
    if (state.depth == kMaximalNesting) state.Refuse(L"Expression nested too deeply", scan.first.At());
    ++state.depth;  // what throws ends the parse, and with it the state
    const auto hit = this->subject().parse(scan);
    --state.depth;
    return hit;
  }
};

template <class Subject>
Nested<Subject> Nest(const Subject& rule) {
  return Nested<Subject>(rule);
}

/// Lets a rule try only where the text looks like it: most alternatives fail, and cheaper here than in their rule.
template <class Subject>
class Guarded : public classic::unary<Subject, classic::parser<Guarded<Subject>>> {
  using Base = classic::unary<Subject, classic::parser<Guarded<Subject>>>;

 public:
  using Test = bool (*)(std::wstring_view rest);

  Guarded(Test test, const Subject& subject) : Base(subject), test_(test) {}

  template <class S>
  typename classic::parser_result<Guarded, S>::type parse(const S& scan) const {
    if (scan.at_end() || !test_({scan.first.At(), static_cast<std::size_t>(scan.last.At() - scan.first.At())})) {
      return scan.no_match();
    }
    return this->subject().parse(scan);
  }

 private:
  Test test_;
};

template <class Subject>
Guarded<Subject> Guard(typename Guarded<Subject>::Test test, const Subject& rule) {
  return Guarded<Subject>(test, rule);
}

using Text = std::wstring_view;  // not empty where these are asked

bool IsLetter(wchar_t c) { return std::iswalpha(static_cast<std::wint_t>(c)) != 0; }
bool IsNamePart(wchar_t c) {
  return c == L'_' || c == L'\'' || c == L'.' || std::iswalnum(static_cast<std::wint_t>(c)) != 0;
}

template <wchar_t... kFirst>
bool IsOneOf(Text rest) {
  return ((rest[0] == kFirst) || ...);
}
bool IsNumber(Text rest) { return rest[0] == L'.' || (rest[0] >= L'0' && rest[0] <= L'9'); }
bool IsKeyword(Text rest) { return rest[0] == L'#'; }
bool IsMacro(Text rest) { return rest[0] == L'$'; }
bool IsMatrix(Text rest) { return rest[0] == kMatrixOpen; }
bool IsVector(Text rest) { return rest[0] == kVectorOpen; }
bool IsLeading(Text rest) { return rest[0] == kLeadingVectorOpen || rest[0] == kLeadingMatrixOpen; }
bool IsName(Text rest) { return rest[0] == L'_' || IsLetter(rest[0]); }

/// What comes after the name at the front, and after spaces.
Text AfterName(Text rest) {
  const auto* const end_of_name = std::find_if_not(rest.begin(), rest.end(), IsNamePart);
  const auto* const next = std::find_if_not(end_of_name, rest.end(), IsSpace);
  return rest.substr(static_cast<std::size_t>(next - rest.begin()));
}

bool IsCall(Text rest) { return IsName(rest) && AfterName(rest).substr(0, 1) == L"("; }
bool IsAssignment(Text rest) {
  const Text next = IsName(rest) ? AfterName(rest).substr(0, 2) : Text();
  return !next.empty() && next[0] == L'=' && next != L"==";
}

/// Of a number out of the range of double: whether it is too small and not too large.
bool RoundsToZero(const std::string& digits) {
  long double number = 1.0L;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number < 1.0L;
}

/// Gives the node of a number its value, rounded to the nearest double.
struct ReadNumber {
  void operator()(TreeNode& node, const Cursor& begin, const Cursor& end) const {
    const wchar_t* first = begin.At();
    while (first != end.At() && IsSpace(*first)) ++first;
    const std::string digits(first, end.At());  // the rule lets ASCII pass only
    double number = 0.0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (result.ec != std::errc() && !RoundsToZero(digits)) begin.State().Refuse(L"Number out of range", first);
    node.value.value(Value(number, 0.0));
  }
};

/// The rules. They are never changed after construction, so that all threads share one set.
///
/// No text is parsed twice by two alternatives, but for a name or the head of a macro definition: the bracket scan has
/// decided between matrix, vector and index, and what two alternatives have in common at their beginning is written
/// once. The order in which alternatives match is that of the full forms.
///
/// Each rule with a node of its own keeps some punctuation, because a match of one single node takes no node for the
/// rule: [1] must stay a vector, f(x) a call.
struct Rules {
  Rule<ERule::kExpression> expression;
  Rule<ERule::kConstant> constant;
  Rule<ERule::kFunction> function;
  Rule<ERule::kIdent> ident;
  Rule<ERule::kNumber> number;
  Rule<ERule::kOperand> operand;
  Rule<ERule::kUnary> unary;
  Rule<ERule::kGreedy0> greedy0;
  Rule<ERule::kGreedy1> greedy1;
  Rule<ERule::kGreedy2> greedy2;
  Rule<ERule::kGreedy3> greedy3;
  Rule<ERule::kGreedy4> greedy4;
  Rule<ERule::kIdxObject> idx_object;
  Rule<ERule::kObject> object;
  Rule<ERule::kVector> vector, leading_vector;
  Rule<ERule::kBracketed> bracketed;
  Rule<ERule::kMatrix> matrix, leading_matrix;
  Rule<ERule::kAssign> assign;
  Rule<ERule::kString> string;
  Rule<ERule::kAssignMacro> assign_macro;
  Rule<ERule::kMacro> macro;
  Rule<ERule::kIf> if_rule;
  Rule<ERule::kSwitch> switch_rule;
  Rule<ERule::kNone> nested_expression, nested_greedy0, start;

  Rules() {
    DefineOperators();
    DefineOperands();
    DefineLiterals();
    DefineCalls();
    DefineNames();
    start = expression >> classic::end_p;
  }

 private:
  static auto Keyword(const wchar_t* word) { return classic::no_node_d[classic::as_lower_d[classic::str_p(word)]]; }
  static auto Discarded(wchar_t c) { return classic::no_node_d[classic::ch_p(c)]; }
  static auto Name() {
    using classic::alnum_p;
    using classic::alpha_p;
    return classic::leaf_node_d[classic::lexeme_d[(alpha_p | L'_') >> *(alnum_p | L'_' | L'\'' | L'.')]];
  }
  /// "=", and not the beginning of "==".
  static auto AssignSign() { return classic::ch_p(L'=') >> ~classic::eps_p(classic::ch_p(L'=')); }

  void DefineOperators() {
    using classic::ch_p;
    using classic::str_p;
    expression = Guard(IsMacro, assign_macro) | Guard(IsAssignment, assign) | greedy0;
    nested_expression = Nest(expression);
    nested_greedy0 = Nest(greedy0);
    const auto logical = str_p(L"||") | str_p(L"&&");
    const auto comparison = str_p(L"<=") | str_p(L">=") | ch_p(L'<') | ch_p(L'>') | str_p(L"==") | str_p(L"!=");
    greedy0 = greedy1 >> *(Guard(&IsOneOf<L'|', L'&'>, logical) >> greedy1);
    greedy1 = greedy2 >> *(Guard(&IsOneOf<L'<', L'>', L'=', L'!'>, comparison) >> greedy2);
    greedy2 = greedy3 >> *(Guard(&IsOneOf<L'+', L'-'>, ch_p(L'+') | ch_p(L'-')) >> greedy3);
    greedy3 = unary >> *(Guard(&IsOneOf<L'*', L'/', L'%'>, ch_p(L'*') | ch_p(L'/') | ch_p(L'%')) >> unary);
    unary = !Guard(&IsOneOf<L'!', L'-'>, ch_p(L'!') | ch_p(L'-')) >> greedy4;
    greedy4 = idx_object >> *(Guard(&IsOneOf<L'^', L'*'>, ch_p(L'^') | str_p(L"**")) >> idx_object);
  }

  void DefineOperands() {
    using classic::ch_p;
    const auto colon = ch_p(L':');
    const auto comma = ch_p(L',');
    const auto item = !nested_greedy0;
    bracketed = Discarded(L'(') >> nested_greedy0 >> Discarded(L')');
    const auto slice = colon >> item >> !(colon >> item);
    const auto more_items = *(comma >> item);
    // A first item that fails is not tried again as a second one, and so on in all brackets inside.
    const auto items =
        nested_greedy0 >> (slice | !comma >> item >> more_items) | !(slice | comma >> item >> more_items);
    // Brackets can be indexed, too: that is how an index is applied to what an index gives, (x[0])[1].
    idx_object = (bracketed | operand) >> !(ch_p(static_cast<wchar_t>(kIndexOpen)) >> items >> Discarded(L']'));
    operand = Guard(IsNumber, number) | Guard(IsKeyword, if_rule) | Guard(IsKeyword, switch_rule) |
              Guard(IsMatrix, matrix) | Guard(IsVector, vector) | constant | Guard(IsMacro, macro) |
              Guard(IsCall, function) | Guard(IsName, object);
    if_rule = Keyword(L"#if") >> nested_greedy0 >> (Keyword(L"#then") | Discarded(L':')) >> nested_greedy0 >>
              Keyword(L"#else") >> nested_greedy0;
    switch_rule = Keyword(L"#switch") >> nested_greedy0 >> !Discarded(L':') >>
                  +(Keyword(L"#case") >> nested_greedy0 >> Discarded(L':') >> nested_greedy0) >> Keyword(L"#default") >>
                  !Discarded(L':') >> nested_greedy0;
  }

  void DefineLiterals() {
    using classic::ch_p;
    const auto open = [](EBracketMark mark) { return ch_p(static_cast<wchar_t>(mark)); };
    const auto element = !(Guard(IsLeading, leading_matrix) | Guard(IsLeading, leading_vector)) >> nested_expression;
    const auto elements = element >> *(Discarded(L',') >> element) >> Discarded(L']');
    const auto row = !leading_matrix >> vector;
    const auto rows = row >> *(Discarded(L',') >> row) >> Discarded(L']');
    vector = open(kVectorOpen) >> elements;
    leading_vector = open(kLeadingVectorOpen) >> elements;
    matrix = open(kMatrixOpen) >> rows;
    leading_matrix = open(kLeadingMatrixOpen) >> rows;
  }

  void DefineCalls() {
    using classic::ch_p;
    const auto left = ch_p(L'(');
    const auto right = ch_p(L')');
    const auto comma = ch_p(L',');
    const auto dollar = ch_p(L'$');
    const auto argument = string | nested_expression;
    function = ident >> left >> !(argument >> *(comma >> argument)) >> right;
    macro = dollar >> ident >> left >> !(string | nested_expression >> *(comma >> nested_expression)) >> right;
    assign_macro =
        dollar >> ident >> left >> !(ident >> *(comma >> ident)) >> right >> AssignSign() >> nested_expression;
    assign = +(object >> AssignSign()) >> nested_expression;
  }

  void DefineNames() {
    using classic::as_lower_d;
    using classic::ch_p;
    using classic::leaf_node_d;
    using classic::lexeme_d;
    using classic::str_p;
    ident = Name();
    // A name before "(" is a function; to take it for an object as well would only parse the brackets once more.
    object = (Name() - as_lower_d[str_p(L"if")]) >> ~classic::eps_p(ch_p(L'('));
    constant = leaf_node_d[lexeme_d[L'@' >> (classic::alpha_p | L'_') >> *(classic::alnum_p | L'_')]];
    string = leaf_node_d[lexeme_d[L'"' >> +~ch_p(L'"') >> L'"']];
    number = classic::access_node_d[leaf_node_d[classic::ureal_p]][ReadNumber()];
  }
};

const Rules& SharedRules() {
  static const Rules rules;
  return rules;
}

/// Spaces are skipped inside of a match that begins a rule, so they can stand at the front of its node.
SyntaxNode Convert(const TreeNode& tree, const ParseState& state) {
  const wchar_t* first = tree.value.begin().At();
  const wchar_t* last = tree.value.end().At();
  while (first != last && IsSpace(*first)) ++first;
  while (first != last && IsSpace(last[-1])) --last;

  SyntaxNode node;
  node.rule = static_cast<ERule>(tree.value.id().to_long());
  node.begin = static_cast<std::size_t>(first - state.begin);
  node.end = static_cast<std::size_t>(last - state.begin);
  if (node.rule == ERule::kNumber) node.number = tree.value.value().GetScalar().real();
  node.children.reserve(tree.children.size());
  for (const TreeNode& child : tree.children) node.children.push_back(Convert(child, state));
  return node;
}

}  // namespace

SyntaxNode ParseSyntax(std::wstring_view marked, const std::wstring& text, EStart start) {
  ParseState state{marked.data(), marked.data(), &text};
  const Cursor begin(marked.data(), &state);
  const Cursor end(marked.data() + marked.size(), &state);
  const Rules& rules = SharedRules();
  const auto result = start == EStart::kObject ? classic::ast_parse<Factory>(begin, end, rules.object, Space())
                                               : classic::ast_parse<Factory>(begin, end, rules.start, Space());
  if (!result.full || result.trees.empty()) state.Refuse(L"Error while parsing", state.furthest);
  return Convert(*result.trees.begin(), state);
}

}  // namespace kestrel::calculator
