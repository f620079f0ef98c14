// SPDX-License-Identifier: MIT
// A block's symmetry items and cell read once: symbols, number, operators, group, cell.
#include "cif/CifBlockSymmetry.hpp"

#include <array>
#include <cmath>
#include <gemmi/symmetry.hpp>
#include <memory>
#include <optional>
#include <stdexcept>
#include <unordered_map>

#include "cif/CifCheckValues.hpp"
#include "cif/SpacegroupOperators.hpp"
#include "cif/SpacegroupOperatorsRecent.hpp"

namespace {

std::optional<gemmi::GroupOps> from_hall(const std::string& hall) {
    if (hall.empty()) return std::nullopt;
    try {
        return SpacegroupOperators::read_hall(hall);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

std::optional<gemmi::GroupOps> from_symbol(const std::string& xhm) {
    if (xhm == "Unknown") return std::nullopt;
    const gemmi::SpaceGroup* found = gemmi::find_spacegroup_by_name(xhm);
    if (found == nullptr) return std::nullopt;
    return found->operations();
}

std::optional<gemmi::GroupOps> from_number(int number) {
    if (number < 1 || number > 230) return std::nullopt;
    return gemmi::get_spacegroup_reference_setting(number).operations();
}

}  // namespace

struct CifBlockSymmetry::Ops {
    const gemmi::GroupOps* operators = nullptr;  // the list's, shared with other blocks
    std::optional<gemmi::GroupOps> hall, other;  // other: from the symbol or the number
    const gemmi::GroupOps* chosen = nullptr;
    bool hall_built = false;
    // Every operation of the chosen group with its centrings, as the rows of
    // a 3x4 matrix of doubles (rotation, then translation).
    std::vector<std::array<double, 12>> affine;
};

CifBlockSymmetry::CifBlockSymmetry(const CifDataBlock& block) {
    // The first of the names the block gives a value, as cif_check_text()
    // and cif_check_read() take it, its name kept by the item itself.
    auto given = [&block](std::initializer_list<CifCheckName> names) -> const CifDataItem* {
        for (const CifCheckName& name : names) {
            const CifDataItem* item = cif_check_item(block, name);
            if (item != nullptr && item->has_value()) return item;
        }
        return nullptr;
    };
    if (const CifDataItem* item = given(
            {"_symmetry_space_group_name_H-M", "_space_group_name_H-M_alt", "_space_group.name_H-M_alt"})) {
        symbol_name_ = &item->name();
        symbol_ = cif_check_text_of(*item).second;
    }
    if (const CifDataItem* item =
            given({"_space_group_name_Hall", "_symmetry_space_group_name_Hall", "_space_group.name_Hall"})) {
        hall_name_ = &item->name();
        hall_ = cif_check_text_of(*item).second;
    }
    if (const CifDataItem* item =
            given({"_symmetry_Int_Tables_number", "_space_group_IT_number", "_space_group.IT_number"})) {
        number_name_ = &item->name();
        const std::string_view text = item->value_view(0);
        if (!cif_check_unknown(text)) {
            const CifNumber number = CifNumber::parse(text);
            if (number.ok()) number_ = static_cast<int>(std::lround(number.value));
        }
    }
    for (const CifCheckName& name :
         {CifCheckName("_symmetry_equiv_pos_as_xyz"), CifCheckName("_space_group_symop_operation_xyz"),
          CifCheckName("_space_group_symop.operation_xyz")}) {
        const CifDataItem* item = cif_check_item(block, name);
        if (item == nullptr) continue;
        operators_name_ = &item->name();
        operators_item_ = item;
        operator_count_ = item->size();
        break;
    }
    cif_check_read_cell(block, cell_);
    volume_ = cif_check_read(block, {"_cell_volume", "_cell.volume"});
}

const std::string& CifBlockSymmetry::name(const std::string* kept) {
    static const std::string none;
    return kept == nullptr ? none : *kept;
}

CifBlockSymmetry::~CifBlockSymmetry() = default;

const std::vector<std::string_view>& CifBlockSymmetry::operators() const {
    if (operators_.size() != operator_count_) {
        operators_.clear();
        operators_.reserve(operator_count_);
        for (std::size_t n = 0; n < operator_count_; ++n)
            operators_.push_back(operators_item_->value_view(n));
    }
    return operators_;
}

namespace {

// What each thread asked of the process's caches lately, asked again without
// their locks and without copying the answers: a few symbols recur in file
// after file. Answers stay put while the thread lives; past limit no more
// are kept and those asked are copied.
template <class Answer>
class ThreadAnswers {
public:
    static constexpr std::size_t limit = 4096;
    // The answer kept under key, or null.
    const Answer* find(const std::string& key) const {
        auto found = answers_.find(key);
        return found == answers_.end() ? nullptr : &found->second;
    }
    // Keeps the answer under key when there is room; null otherwise.
    const Answer* keep(const std::string& key, const Answer& answer) {
        if (answers_.size() >= limit) return nullptr;
        return &answers_.emplace(key, answer).first->second;
    }

private:
    std::unordered_map<std::string, Answer> answers_;
};

}  // namespace

const SpacegroupCache::Group& CifBlockSymmetry::symbol_group() const {
    if (symbol_group_ == nullptr) {
        thread_local ThreadAnswers<SpacegroupCache::Group> named;
        symbol_group_ = named.find(symbol_);
        if (symbol_group_ == nullptr) {
            SpacegroupCache::Group group = Spacegroup::named(symbol_);
            symbol_group_ = named.keep(symbol_, group);
            if (symbol_group_ == nullptr) symbol_group_ = &own_symbol_group_.emplace(std::move(group));
        }
    }
    return *symbol_group_;
}

const std::string& CifBlockSymmetry::derived_symbol() const {
    static const std::string unknown("Unknown");
    const SpacegroupCache::Group& group = symbol_group();
    return group.number == 0 ? unknown : group.symbol;
}

const Spacegroup* CifBlockSymmetry::spacegroup_of_operators() const {
    if (operator_count_ == 0) return nullptr;
    if (!spacegroup_) {
        const int number = symbol_group().number;
        spacegroup_.emplace(list().group(number), number, symbol_);
    }
    return &*spacegroup_;
}

const gemmi::GroupOps* CifBlockSymmetry::operations() const {
    if (!ops_) {
        ops_ = std::make_unique<Ops>();
        if (operator_count_ != 0) ops_->operators = list().operations();
        if (ops_->operators != nullptr) {
            ops_->chosen = ops_->operators;
        } else if (const gemmi::GroupOps* hall = operations_of_hall()) {
            ops_->chosen = hall;
        } else {
            ops_->other = from_symbol(derived_symbol());
            if (!ops_->other) ops_->other = from_number(number_);
            if (ops_->other) ops_->chosen = &*ops_->other;
        }
    }
    return ops_->chosen;
}

const gemmi::GroupOps* CifBlockSymmetry::operations_of_operators() const {
    operations();  // the operators are read first
    return ops_->operators;
}

const SpacegroupOperators& CifBlockSymmetry::list() const {
    if (!list_) list_ = SpacegroupOperatorsRecent::of_thread().entry(*operators_item_);
    return *list_;
}

const gemmi::GroupOps* CifBlockSymmetry::operations_of_hall() const {
    if (!ops_) ops_ = std::make_unique<Ops>();
    if (!ops_->hall_built) {
        ops_->hall_built = true;
        const gemmi::SpaceGroup* setting = hall_setting();
        ops_->hall =
            setting != nullptr ? std::optional<gemmi::GroupOps>(setting->operations()) : from_hall(hall_);
    }
    return ops_->hall ? &*ops_->hall : nullptr;
}

const gemmi::SpaceGroup* CifBlockSymmetry::hall_setting() const {
    if (hall_.empty()) return nullptr;
    // Each symbol as written with each number is looked up once per thread
    // (the answers point into the static tables).
    thread_local ThreadAnswers<const gemmi::SpaceGroup*> found;
    thread_local std::string key;
    key.assign(reinterpret_cast<const char*>(&number_), sizeof number_);
    key += hall_;
    if (const gemmi::SpaceGroup* const* known = found.find(key)) return *known;
    const gemmi::SpaceGroup* setting = tabulated_hall_setting();
    found.keep(key, setting);
    return setting;
}

const gemmi::SpaceGroup* CifBlockSymmetry::tabulated_hall_setting() const {
    auto same = [](const std::string& written, const char* tabulated) {
        std::size_t i = 0;
        for (const char* p = tabulated; *p != '\0'; ++p) {
            while (i < written.size() && written[i] == ' ') ++i;
            if (*p == ' ') continue;
            if (i == written.size() || written[i] != *p) return false;
            ++i;
        }
        while (i < written.size() && written[i] == ' ') ++i;
        return i == written.size();
    };
    // The settings of the stated number first: usually one of them.
    for (const gemmi::SpaceGroup& group : gemmi::spacegroup_tables::main) {
        if (group.number == number_ && same(hall_, group.hall)) return &group;
    }
    for (const gemmi::SpaceGroup& group : gemmi::spacegroup_tables::main) {
        if (group.number != number_ && same(hall_, group.hall)) return &group;
    }
    return nullptr;
}

bool CifBlockSymmetry::hall_readable() const { return hall_.empty() || operations_of_hall() != nullptr; }

bool CifBlockSymmetry::centrosymmetric() const {
    const gemmi::GroupOps* ops = operations();
    return ops != nullptr && ops->is_centrosymmetric();
}

int CifBlockSymmetry::laue_order() const {
    const gemmi::GroupOps* ops = operations();
    if (ops == nullptr) return 0;
    int rotations = static_cast<int>(ops->sym_ops.size());
    return ops->is_centrosymmetric() ? rotations : 2 * rotations;
}

int CifBlockSymmetry::centring_count() const {
    const gemmi::GroupOps* ops = operations();
    return ops == nullptr ? 0 : static_cast<int>(ops->cen_ops.size());
}

int CifBlockSymmetry::multiplicity(const double xyz[3], const double cell_lengths[3]) const {
    const gemmi::GroupOps* ops = operations();
    if (ops == nullptr) return 0;
    std::vector<std::array<double, 12>>& affine = ops_->affine;
    if (affine.empty()) {
        constexpr double den = gemmi::Op::DEN;
        for (const gemmi::Op& op : ops->sym_ops) {
            for (const gemmi::Op::Tran& centring : ops->cen_ops) {
                std::array<double, 12> m;
                for (int i = 0; i < 3; ++i) {
                    for (int j = 0; j < 3; ++j) m[4 * i + j] = op.rot[i][j] / den;
                    m[4 * i + 3] = (op.tran[i] + centring[i]) / den;
                }
                affine.push_back(m);
            }
        }
    }
    // Images closer than this (in Angstrom, along the axes) are the same position.
    constexpr double tolerance = 0.05;
    int fixed = 0;
    for (const std::array<double, 12>& m : affine) {
        double distance2 = 0.0;
        // The sum only grows: an image already too far along one axis is
        // another position (most are, at the first).
        for (int i = 0; i < 3 && distance2 < tolerance * tolerance; ++i) {
            double delta =
                m[4 * i] * xyz[0] + m[4 * i + 1] * xyz[1] + m[4 * i + 2] * xyz[2] + m[4 * i + 3] - xyz[i];
            delta -= std::floor(delta + 0.5);
            delta *= cell_lengths[i];
            distance2 += delta * delta;
        }
        fixed += distance2 < tolerance * tolerance;
    }
    return fixed == 0 ? 0 : static_cast<int>(affine.size()) / fixed;
}
