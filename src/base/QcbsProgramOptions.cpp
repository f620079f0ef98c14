// SPDX-License-Identifier: GPL-3.0-or-later
// The program's one set of options: read, written and announced when changed.
#include "base/QcbsProgramOptions.hpp"

#include "base/ORMAApplicationSettings.hpp"

void QcbsProgramOptions::setValues(const QcbsOptions& values) {
    // Taken even when equal: an empty text and a null one compare equal.
    const QcbsOptions previous = std::exchange(values_, values);
    if (!(previous == values_)) emit changed(previous);
}

void QcbsProgramOptions::load() {
    ORMAApplicationSettings settings;
    QcbsOptions v;
    v.text_buttons = settings.readBoolEntry("text on buttons", false);
    v.initial_app_height = settings.readNumEntry("window height", 650);
    v.initial_app_width = settings.readNumEntry("window width", 800);
    v.max_consec_error = settings.readNumEntry("max consec error", 4);
    v.reuse_window = settings.readBoolEntry("reuse window", false);
    v.start_with_template = settings.readBoolEntry("start with template", false);
    v.template_file = settings.readEntry("template filename", QString(""));
    v.check_mandatory_items = settings.readBoolEntry("check mandatory items", false);
    v.mandatory_items_file = settings.readEntry("mandatory filename", QString(""));
    v.line_numbers = settings.readBoolEntry("line numbers", false);
    v.save_backup = settings.readBoolEntry("save backup file", false);
    v.keep_recovery = settings.readBoolEntry("keep recovery files", true);
    // One limit for the reader and the printer, read once for each.
    v.line_length_limit = settings.readNumEntry("line length limit", 80);
    v.line_length_limit = settings.readNumEntry("line length limit", 80);
    v.consistency_checks = settings.readBoolEntry("consistency checks", true);
    v.contact_author.name = settings.readEntry("contact name", QString());
    v.contact_author.address = settings.readEntry("contact address", QString());
    v.contact_author.phone = settings.readEntry("contact phone", QString());
    v.contact_author.fax = settings.readEntry("contact fax", QString());
    v.contact_author.email = settings.readEntry("contact email", QString());
    v.folding = settings.readBoolEntry("folding", true);
    v.data_name_completion = settings.readBoolEntry("data name completion", true);
    v.matching_delimiters = settings.readBoolEntry("matching delimiters", true);
    v.rectangular_selection = settings.readBoolEntry("rectangular selection", true);
    v.show_white_space = settings.readBoolEntry("show white space", false);
    setValues(v);
}

void QcbsProgramOptions::save() const {
    ORMAApplicationSettings settings;
    const QcbsOptions& v = values_;
    settings.writeEntry("text on buttons", v.text_buttons);
    settings.writeEntry("window height", v.initial_app_height);
    settings.writeEntry("window width", v.initial_app_width);
    settings.writeEntry("max consec error", v.max_consec_error);
    settings.writeEntry("reuse window", v.reuse_window);
    settings.writeEntry("start with template", v.start_with_template);
    settings.writeEntry("template filename", v.template_file);
    settings.writeEntry("check mandatory items", v.check_mandatory_items);
    settings.writeEntry("mandatory filename", v.mandatory_items_file);
    settings.writeEntry("line numbers", v.line_numbers);
    settings.writeEntry("save backup file", v.save_backup);
    settings.writeEntry("keep recovery files", v.keep_recovery);
    settings.writeEntry("line length limit", v.line_length_limit);
    settings.writeEntry("consistency checks", v.consistency_checks);
    settings.writeEntry("contact name", v.contact_author.name);
    settings.writeEntry("contact address", v.contact_author.address);
    settings.writeEntry("contact phone", v.contact_author.phone);
    settings.writeEntry("contact fax", v.contact_author.fax);
    settings.writeEntry("contact email", v.contact_author.email);
    settings.writeEntry("folding", v.folding);
    settings.writeEntry("data name completion", v.data_name_completion);
    settings.writeEntry("matching delimiters", v.matching_delimiters);
    settings.writeEntry("rectangular selection", v.rectangular_selection);
    settings.writeEntry("show white space", v.show_white_space);
}
