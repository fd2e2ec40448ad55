// SPDX-License-Identifier: MIT
//
// The pages of the window "Why Is a Font Missing?": each shows one part of an answer. They are in the same
// place, and one of them is seen.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/samples/file_sample.h"
#include "diagnosis/answer.h"
#include "diagnosis/cure.h"

#include <X11/Intrinsic.h>

namespace gw {

/// What pages ask of their window.
struct DoctorActions {
    std::function<void(const diagnosis::Cure& cure)> carry_out;
    std::function<void(std::size_t deed)> undo;  ///< by its place among the deeds, the newest being 0
    /// How what was asked for becomes another name of this font; none where it cannot.
    std::function<std::optional<diagnosis::Cure>(const diagnosis::NearFont& font)> alias;
    std::function<void(const std::string& text)> copy;
};

/// A label, a field with a text to copy, and the button that copies it.
struct CopyRow {
    Widget label = nullptr;
    Widget field = nullptr;
    Widget button = nullptr;
};

class AnswerPage {
  public:
    AnswerPage() = default;
    virtual ~AnswerPage() = default;
    AnswerPage(const AnswerPage&) = delete;
    AnswerPage& operator=(const AnswerPage&) = delete;

    /// Makes the parts in a form, which the page fills, also when it grows. `message` is a label for what a
    /// part cannot show.
    virtual void create(Widget form, Widget message) = 0;
    /// Shows its part of the answer.
    virtual void show(const diagnosis::Answer& answer) = 0;
    /// Whether it has anything to show.
    [[nodiscard]] virtual bool has_content() const = 0;
    /// Called when the page comes into sight.
    virtual void appear() {}
};

/// What can be done, in a line each and the selected one in full, the command where only the administrator
/// can do it, and what was done in this window.
class CuresPage : public AnswerPage {
  public:
    explicit CuresPage(const DoctorActions& actions) : actions_(actions) {}
    void create(Widget form, Widget message) override;
    void show(const diagnosis::Answer& answer) override;
    [[nodiscard]] bool has_content() const override { return !cures_.empty() || has_deeds_; }
    /// The newest first.
    void show_deeds(const std::vector<diagnosis::Deed>& deeds);

  private:
    void select();
    void carry_out();
    void copy_command();
    void undo();
    const DoctorActions& actions_;
    std::vector<diagnosis::Cure> cures_;
    bool has_deeds_ = false;
    Widget list_ = nullptr;
    Widget what_ = nullptr;
    Widget do_ = nullptr;
    CopyRow command_;
    Widget deeds_ = nullptr;
    Widget undo_ = nullptr;
};

/// The elements of the font path with their states, and the remarks on one of them.
class PathPage : public AnswerPage {
  public:
    void create(Widget form, Widget message) override;
    void show(const diagnosis::Answer& answer) override;
    [[nodiscard]] bool has_content() const override { return !path_.empty(); }
    void appear() override;

  private:
    void select();
    std::vector<diagnosis::ElementReport> path_;
    Widget list_ = nullptr;
    Widget remarks_ = nullptr;
};

/// The nearest fonts, what keeps one of them from matching, and its sample.
class NearestPage : public AnswerPage {
  public:
    explicit NearestPage(const DoctorActions& actions) : actions_(actions) {}
    void create(Widget form, Widget message) override;
    void show(const diagnosis::Answer& answer) override;
    [[nodiscard]] bool has_content() const override { return !fonts_.empty(); }
    void appear() override;

  private:
    void select();
    void show_sample();
    void copy_name();
    void use();
    const DoctorActions& actions_;
    std::vector<diagnosis::NearFont> fonts_;
    Widget list_ = nullptr;
    Widget differences_ = nullptr;
    Widget copy_ = nullptr;
    Widget use_ = nullptr;
    Widget sample_ = nullptr;
    Widget message_ = nullptr;
    FileSample file_sample_;  ///< for a font that the server does not have
};

/// Packages of the distribution that would bring the font.
class PackagesPage : public AnswerPage {
  public:
    explicit PackagesPage(const DoctorActions& actions) : actions_(actions) {}
    void create(Widget form, Widget message) override;
    void show(const diagnosis::Answer& answer) override;
    [[nodiscard]] bool has_content() const override { return !packages_.empty(); }

  private:
    void select();
    void copy_command();
    const DoctorActions& actions_;
    std::vector<diagnosis::PackageHint> packages_;
    Widget list_ = nullptr;
    CopyRow command_;
};

/// For a fontset: which font covers which charset of the locale.
class CharsetsPage : public AnswerPage {
  public:
    explicit CharsetsPage(const DoctorActions& actions) : actions_(actions) {}
    void create(Widget form, Widget message) override;
    void show(const diagnosis::Answer& answer) override;
    [[nodiscard]] bool has_content() const override { return !charsets_.empty(); }

  private:
    void select();
    void copy_names();
    const DoctorActions& actions_;
    std::vector<diagnosis::CharsetCoverage> charsets_;
    std::string base_names_;
    Widget list_ = nullptr;
    Widget coverage_ = nullptr;
    CopyRow names_;
};

}  // namespace gw
