#pragma once

#include <cstddef>
#include <vector>

/// The checks that the parameters of distributions have in common. Each raises utils::runtime_error with a text that
/// begins with the distribution, such as "Normal distribution: ".
namespace kestrel::algorithm {

/// Exactly `count` parameters, all finite.
void RequireCount(const wchar_t* distribution, const std::vector<double>& params, std::size_t count);
/// A first part of `first` parameters and at least one group of `group` after it, all finite.
void RequireGroups(const wchar_t* distribution, const std::vector<double>& params, std::size_t first,
                   std::size_t group);
void RequireFinite(const wchar_t* distribution, const std::vector<double>& params);
void RequirePositive(const wchar_t* distribution, const wchar_t* what, double value);
void RequireAscending(const wchar_t* distribution, const wchar_t* what, double low, double high);
/// With this text if the condition does not hold.
void Require(bool condition, const wchar_t* distribution, const wchar_t* text);

}  // namespace kestrel::algorithm
