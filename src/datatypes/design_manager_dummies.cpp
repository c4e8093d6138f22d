#include "datatypes/design_manager.h"
#include "datatypes/entry_union.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

/// Keeps the first value that is initialized. The texts refuse one that does not fit it.
void Join(CDesignEntry& stored, const CDesignEntry& entry, const wchar_t* other_type, const wchar_t* other_kind) {
  if (entry.IsUninitialized()) return;
  if (stored.IsUninitialized()) {
    stored = entry;
    return;
  }
  if (stored.GetDomainType() != entry.GetDomainType()) throw utils::logic_error(other_type);
  if (stored.GetDomainType() == enums::DesignEntry::VARIANT &&
      stored.GetVariant().GetKind() != entry.GetVariant().GetKind()) {
    throw utils::logic_error(other_kind);
  }
}

void JoinResponse(CDesignEntry& stored, const CDesignEntry& entry) {
  Join(stored, entry, L"Found response with same name but incompatible data type.",
       L"Found response with same name but different variant type.");
}

void JoinCriterion(Criterion& stored, const Criterion& criterion) {
  if (stored.GetType() != criterion.GetType()) {
    throw utils::logic_error(L"Found criterion with same name but different criterion type.");
  }
  CDesignEntry value = stored.GetValue();
  Join(value, criterion.GetValue(), L"Found criterion with same name but incompatible data type.",
       L"Found criterion with same name but different variant type.");
  if (stored.GetValue().IsUninitialized() && !value.IsUninitialized()) stored = criterion;
}

void KeepEvaluated(Criterion& stored, const Criterion& criterion) {
  if (stored.GetValue().IsUninitialized() && stored.GetType() == criterion.GetType()) stored = criterion;
}

}  // namespace

CDesignEntrySequence DesignManager::GetCompleteDummyParameters(const DesignManager& manager) {
  EntryUnion<CDesignEntry> parameters;
  for (const Design& design : manager) parameters.Add(design.GetParameters(), KeepInitialized);
  return parameters.Take();
}

CDesignEntrySequence DesignManager::GetCompleteDummyResponses(const DesignManager& manager, bool strict) {
  EntryUnion<CDesignEntry> responses;
  for (const Design& design : manager) {
    responses.Add(design.GetResponses(), strict ? JoinResponse : KeepInitialized);
  }
  return responses.Take();
}

CriterionSequence DesignManager::GetCompleteDummyCriteria(const DesignManager& manager, bool strict) {
  EntryUnion<Criterion> criteria;
  for (const Design& design : manager) criteria.Add(design.GetCriteria(), strict ? JoinCriterion : KeepEvaluated);
  return criteria.Take();
}

Design DesignManager::GetCompleteDummyDesign(const DesignManager& manager, bool strict) {
  Design design;
  design.SetParameters(GetCompleteDummyParameters(manager));
  design.SetResponses(GetCompleteDummyResponses(manager, strict));
  design.SetCriteria(GetCompleteDummyCriteria(manager, strict));
  return design;
}

}  // namespace kestrel::algorithm::datatypes
