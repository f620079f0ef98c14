// SPDX-License-Identifier: MIT
// Benchmark: the structure checks (codes 370-384) against the whole check of the same documents.
// The peer is the check as the editor and tessary-check run it (CifDocumentCheck: reading against
// the core dictionary, the mandatory items, every consistency check, the structure checks
// included). Against it, the structure checks alone, run on the documents already read (with
// each block's symbols and operators read and the operators' group built, as the older
// space-group check leaves them), and the consistency checker as a whole. Two inputs:
// - the CIF files named on the command line (or listed, one a line, in a file given with
//   --list), read into memory first;
// - a generated structure report of N atom sites (default 2,000) in P 21/c with every item the
//   structure checks read, its bonds and a reflection loop of 20 rows per atom.
// Times are processor time of the thread, best of R runs (default 5).
//
//   structure_checks_bench [--atoms N] [--runs R] [--dictionary FILE] [--list FILE] [FILES...]

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "cif/CifBlockSymmetry.hpp"
#include "cif/CifCheckFindings.hpp"
#include "cif/CifChemistryCheck.hpp"
#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDiffractionCheck.hpp"
#include "cif/CifDocumentCheck.hpp"
#include "cif/CifPublicationCheck.hpp"
#include "cif/CifRefinementCheck.hpp"
#include "cif/CifSymmetryCheck.hpp"
#include "cif/ORMACifConsistencyChecker.hpp"

namespace {

double now_ms() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

double best(int runs, const std::function<void()>& work) {
    double fastest = 1e300;
    for (int i = 0; i < runs; ++i) {
        double start = now_ms();
        work();
        fastest = std::min(fastest, now_ms() - start);
    }
    return fastest;
}

// The block's symmetry as the older checks leave it: the space-group
// symbol against the operators builds the operators' group.
std::vector<std::unique_ptr<CifBlockSymmetry>> symmetries_of(const Cif& cif) {
    std::vector<std::unique_ptr<CifBlockSymmetry>> result;
    for (const THandle<CifDataBlock>& block : cif.blocks()) {
        result.push_back(std::make_unique<CifBlockSymmetry>(*block));
        if (!result.back()->symbol().empty()) result.back()->spacegroup_of_operators();
    }
    return result;
}

// The checks of codes 370-384 as the consistency checker runs them, and
// nothing else of it.
std::size_t structure_checks(const Cif& cif,
                             const std::vector<std::unique_ptr<CifBlockSymmetry>>& symmetries) {
    CifCheckFindings findings(cif);
    for (std::size_t n = 0; n < cif.blocks().size(); ++n) {
        const CifDataBlock& block = *cif.blocks()[n];
        const CifBlockSymmetry& symmetry = *symmetries[n];
        CifChemistryCheck chemistry(block, symmetry, findings);
        chemistry.check_weight_and_density();
        chemistry.check_cell_contents();
        chemistry.check_moieties();
        chemistry.check_measured_density();
        CifSymmetryCheck(block, symmetry, findings).check_hall_and_number();
        CifDiffractionCheck experiment(block, symmetry, findings);
        experiment.check_absorption();
        experiment.check_transmission();
        experiment.check_reflections();
        CifRefinementCheck refinement(block, symmetry, findings);
        refinement.check_data_per_parameter();
        refinement.check_shift();
        refinement.check_r_factors();
        refinement.check_residual_density();
        refinement.check_absolute_structure();
    }
    CifPublicationCheck(cif, findings).check();
    return findings.take().size();
}

std::string report(int atoms) {
    std::string text =
        "data_bench\n_publ_section_title 'Bench'\nloop_\n_publ_author_name\n'A, B'\n"
        "_chemical_formula_sum 'C2 H2 O'\n_chemical_formula_moiety 'C2 H2 O'\n"
        "_chemical_formula_weight 42.04\n_symmetry_space_group_name_H-M 'P 21/c'\n"
        "_symmetry_space_group_name_Hall '-P 2ybc'\n_symmetry_Int_Tables_number 14\n"
        "loop_\n_symmetry_equiv_pos_as_xyz\n'x, y, z'\n'-x, y+1/2, -z+1/2'\n'-x, -y, -z'\n'x, -y-1/2, "
        "z-1/2'\n";
    char line[200];
    std::snprintf(line, sizeof line,
                  "_cell_length_a 40.000(2)\n_cell_length_b 40.000(2)\n_cell_length_c %.3f(2)\n"
                  "_cell_angle_alpha 90\n_cell_angle_beta 90\n_cell_angle_gamma 90\n_cell_volume %.1f(4)\n"
                  "_cell_formula_units_Z %d\n",
                  atoms * 0.01, 1600.0 * atoms * 0.01, atoms);
    text += line;
    text +=
        "_exptl_crystal_density_diffrn 1.000\n_exptl_absorpt_coefficient_mu 0.08\n"
        "_exptl_absorpt_correction_type multi-scan\n_exptl_absorpt_correction_T_min 0.90\n"
        "_exptl_absorpt_correction_T_max 0.95\n_exptl_crystal_size_max 0.3\n_exptl_crystal_size_mid 0.2\n"
        "_exptl_crystal_size_min 0.1\n_diffrn_radiation_wavelength 0.71073\n_diffrn_reflns_theta_max 27.5\n"
        "_diffrn_reflns_number 100000\n_reflns_number_total 50000\n_refine_ls_number_reflns 50000\n"
        "_refine_ls_number_parameters 400\n_refine_ls_shift/su_max 0.001\n_refine_ls_wR_factor_ref 0.10\n"
        "_refine_ls_R_factor_gt 0.04\n_refine_ls_structure_factor_coef Fsqd\n_refine_diff_density_max 0.3\n"
        "_refine_diff_density_min -0.3\n"
        "loop_\n_atom_site_label\n_atom_site_type_symbol\n_atom_site_fract_x\n_atom_site_fract_y\n"
        "_atom_site_fract_z\n_atom_site_U_iso_or_equiv\n_atom_site_occupancy\n";
    const char* const types[] = {"C", "C", "H", "H", "O"};
    for (int i = 0; i < atoms; ++i) {
        std::snprintf(line, sizeof line, "%s%d %s 0.%04d(3) 0.%04d(3) 0.%04d(3) 0.0%d(2) 0.2\n", types[i % 5],
                      i, types[i % 5], 1000 + (i * 37) % 8000, 1000 + (i * 53) % 8000, 1000 + (i * 71) % 8000,
                      10 + i % 80);
        text += line;
    }
    text += "loop_\n_geom_bond_atom_site_label_1\n_geom_bond_atom_site_label_2\n_geom_bond_distance\n";
    for (int i = 1; i < atoms; ++i) {
        std::snprintf(line, sizeof line, "%s%d %s%d 1.%03d(2)\n", types[i % 5], i, types[(i - 1) % 5], i - 1,
                      300 + i % 200);
        text += line;
    }
    text +=
        "loop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n_refln_F_squared_calc\n_refln_F_squared_"
        "meas\n";
    for (int i = 0; i < atoms * 20; ++i) {
        std::snprintf(line, sizeof line, "%d %d %d %d.%d %d.%d\n", i % 41 - 20, (i / 41) % 37 - 18, i / 1517,
                      100 + i % 900, i % 97, 101 + i % 890, i % 89);
        text += line;
    }
    return text;
}

void measure(const char* title, const std::vector<std::string>& texts, const CifDocumentCheck& check,
             int runs) {
    std::vector<THandle<Cif>> documents;
    std::size_t bytes = 0, findings = 0;
    for (const std::string& text : texts) {
        bytes += text.size();
        documents.push_back(check.run(text));
    }
    for (const THandle<Cif>& cif : documents) findings += structure_checks(*cif, symmetries_of(*cif));
    const double whole = best(runs, [&] {
        for (const std::string& text : texts) check.run(text);
    });
    double alone = 1e300;
    for (int run = 0; run < runs; ++run) {
        std::vector<std::vector<std::unique_ptr<CifBlockSymmetry>>> symmetries;
        for (const THandle<Cif>& cif : documents) symmetries.push_back(symmetries_of(*cif));
        double start = now_ms();
        for (std::size_t n = 0; n < documents.size(); ++n) structure_checks(*documents[n], symmetries[n]);
        alone = std::min(alone, now_ms() - start);
    }
    // The consistency checker as a whole adds to the error container, so
    // each run gets documents of its own, read beforehand.
    double checker = 1e300;
    CifCheckSettings quiet = check.settings();
    quiet.consistency = false;
    const CifDocumentCheck reading(check.dictionary(), quiet);
    for (int run = 0; run < runs; ++run) {
        std::vector<THandle<Cif>> fresh;
        for (const std::string& text : texts) fresh.push_back(reading.run(text));
        double start = now_ms();
        for (const THandle<Cif>& cif : fresh) ORMACifConsistencyChecker(cif).check_cif();
        checker = std::min(checker, now_ms() - start);
    }
    std::printf("\n%s: %zu documents, %.2f MB, %zu structure findings\n", title, texts.size(), bytes / 1e6,
                findings);
    std::printf("  %-44s %9.2f ms  (peer)\n", "the whole check (CifDocumentCheck::run)", whole);
    std::printf("  %-44s %9.2f ms  %5.1f %% of the check\n", "the consistency checker, all its checks",
                checker, 100.0 * checker / whole);
    std::printf("  %-44s %9.2f ms  %5.1f %% of the check\n", "the structure checks (370-384) alone", alone,
                100.0 * alone / whole);
}

std::string slurp(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

}  // namespace

int main(int argc, char** argv) {
    int atoms = 2000;
    int runs = 5;
    std::string dictionary_path = TESSARY_SHARED_DIR "/dictionaries/cif_core.dic";
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "--atoms" && i + 1 < argc) {
            atoms = std::atoi(argv[++i]);
        } else if (arg == "--runs" && i + 1 < argc) {
            runs = std::max(1, std::atoi(argv[++i]));
        } else if (arg == "--dictionary" && i + 1 < argc) {
            dictionary_path = argv[++i];
        } else if (arg == "--list" && i + 1 < argc) {
            std::istringstream list(slurp(argv[++i]));
            for (std::string line; std::getline(list, line);)
                if (!line.empty()) files.push_back(line);
        } else {
            files.push_back(arg);
        }
    }
    THandle<CifDictionary> dictionary;
    std::ifstream stream(dictionary_path, std::ios::binary);
    if (stream) {
        THandle<CifConcreteDictionary> core(new CifConcreteDictionary());
        THandle<CifErrorContainer> errors(new CifErrorContainer());
        core->read(stream, errors, nullptr);
        dictionary = core;
        std::printf("dictionary: %s\n", dictionary_path.c_str());
    } else {
        std::printf("dictionary: none (%s not found)\n", dictionary_path.c_str());
    }
    const CifDocumentCheck check(dictionary, CifCheckSettings());
    if (!files.empty()) {
        std::vector<std::string> texts;
        for (const std::string& file : files) texts.push_back(slurp(file));
        measure("the files given", texts, check, runs);
    }
    measure("generated structure report", {report(atoms)}, check, runs);
    return 0;
}
