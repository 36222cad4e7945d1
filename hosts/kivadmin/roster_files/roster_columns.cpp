#include "hosts/kivadmin/roster_files/roster_columns.h"

#include <algorithm>
#include <optional>
#include <sstream>

#include "hosts/common/host_error.h"
#include "hosts/kivadmin/roster_files/cell_text.h"

namespace kivadmin {
namespace {

using kivhost::HostError;
using kivhost::kWrongUsage;

struct Headings {
  Part part;
  const char* keys;  // as of HeadingKey; the more usual one first
};

// English, German, French, Spanish, Italian, Dutch, Portuguese, Polish, Swedish.
constexpr Headings kHeadings[] = {
    {Part::kTeacher,
     "teacher teachername classteacher homeroomteacher formteacher teachers instructor "
     "lehrkraft lehrer lehrerin klassenlehrer klassenlehrerin klassenlehrkraft klassenleitung "
     "klassenleiter klassenleiterin lehrername lehrerlehrerin kursleiter fachlehrer "
     "enseignant enseignante professeur professeurprincipal prof maitre maitresse nomenseignant "
     "profesor profesora docente maestro maestra tutor tutora "
     "insegnante professore professoressa "
     "leerkracht leraar lerares docent juf meester groepsleerkracht klassenleraar mentor "
     "professor professora diretordeturma diretoradeturma "
     "nauczyciel nauczycielka wychowawca wychowawczyni "
     "larare lararen lararinna klassforestandare klasslarare"},
    {Part::kClass,
     "class classname classroom homeroom room form group section "
     "klasse klassenname klassenbezeichnung lerngruppe gruppe kurs kursname "
     "classe nomclasse groupe division "
     "clase grupo aula curso "
     "sezione gruppo "
     "klas klasnaam groep groepsnaam stamgroep lesgroep "
     "turma "
     "klasa oddział oddzial grupa "
     "klass klassnamn grupp"},
    {Part::kFirst,
     "firstname first givenname given forename forenames firstnames christianname "
     "studentfirstname pupilfirstname "
     "vorname vornamen rufname schulervorname schuelervorname "
     "prenom prenoms prenomeleve prenomdeleleve "
     "nombredepila nombres nombrealumno nombredelalumno "
     "nomealunno nomestudente "
     "voornaam voornamen roepnaam "
     "nomeproprio primeironome prenome nomesproprios "
     "imie imiona pierwszeimie imieucznia "
     "fornamn tilltalsnamn"},
    {Part::kBeforeLast,
     "tussenvoegsel tussenvoegsels voorvoegsel voorvoegsels prefix namenszusatz namensvorsatz"},
    {Part::kLast,
     "lastname last surname familyname family lastnames surnames studentlastname pupillastname "
     "nachname familienname zuname schulernachname schuelernachname "
     "nomdefamille nomfamille patronyme nomeleve nomdeleleve "
     "apellidos apellido primerapellido apellido1 1erapellido 1ºapellido apellidosalumno "
     "cognome cognomealunno cognomestudente "
     "achternaam familienaam "
     "apelido apelidos sobrenome ultimonome "
     "nazwisko nazwiskoucznia "
     "efternamn"},
    {Part::kBehindLast, "segundoapellido apellido2 2oapellido 2ºapellido 2apellido"},
    {Part::kName, "name nom nombre nome naam namn"},
    {Part::kFullName,
     "fullname studentname student pupil pupilname learner learnername displayname "
     "schulername schuelername schuler schueler schulerin schuelerin schulerschulerin "
     "schuelerschuelerin vollername vollstandigername vorundnachname vornamenachname kind "
     "eleve nomcomplet prenometnom prenomnom "
     "alumno alumna estudiante nombrecompleto nombreyapellidos nombreyapellido "
     "alunno alunna studente nominativo nomeecognome nomecognome "
     "leerling leerlingnaam naamleerling volledigenaam "
     "aluno aluna estudante nomecompleto nomedoaluno "
     "uczen uczennica imieinazwisko imienazwisko "
     "elev elevnamn elevensnamn fullstandigtnamn forochefternamn"},
    {Part::kLastAndFirst,
     "lastnamefirstname lastfirst surnamefirstname surnameforename "
     "nachnamevorname namevorname familiennamevorname nachundvorname "
     "nometprenom nomprenom nometprenoms nomprenoms nomprenomeleve "
     "apellidosynombre apellidoynombre apellidosnombre "
     "cognomeenome cognomenome "
     "achternaamvoornaam naamvoornaam "
     "apelidoenome apelidonome "
     "nazwiskoiimie nazwiskoimie "
     "efternamnfornamn efternamnochfornamn"}};

struct Meaning {
  Part part;
  size_t rank;  // among the part's; 0 is the most usual one
};

std::map<std::string, Meaning> MakeMeanings() {
  std::map<std::string, Meaning> meanings;
  for (const auto& [part, keys] : kHeadings) {
    std::istringstream words(keys);
    size_t rank = 0;
    for (std::string key; words >> key;) {
      meanings.emplace(key, Meaning{part, rank++});
    }
  }
  return meanings;
}

std::optional<Meaning> MeaningOf(const std::string& heading) {
  static const std::map<std::string, Meaning> kMeanings = MakeMeanings();
  const auto found = kMeanings.find(HeadingKey(heading));
  return found == kMeanings.end() ? std::nullopt : std::optional<Meaning>(found->second);
}

// A, B, ... Z, AA, ... as spreadsheets name them.
std::string LettersOf(size_t place) {
  constexpr size_t kLetters = 26;
  const std::string last(1, static_cast<char>('A' + place % kLetters));
  return place < kLetters ? last : LettersOf(place / kLetters - 1) + last;
}

std::string NameOfColumn(const std::vector<std::string>& headings, size_t place) {
  const std::string heading = Shown(headings[place]);
  const bool isWord = heading.find_first_of(" ,=;") == std::string::npos;
  return heading.empty() ? LettersOf(place) : isWord ? heading : InQuotes(heading);
}

constexpr const char* kRemedy = "--columns teacher=A,class=B,first=C,last=D tells which is which";

std::string LackOfHeading(const std::vector<std::string>& row) {
  return "the first row has no heading of a roster, as teacher, class, first name, last name: it "
         "is "
         "\"" +
         Listed(row) + "\"; --no-heading takes it as a student's";
}

}  // namespace

const char* NameOf(Part part) {
  constexpr const char* kNames[] = {"teacher",       "class", "first", "last (ahead)",     "last",
                                    "last (behind)", "name",  "name",  "name (last first)"};
  return kNames[static_cast<size_t>(part)];
}

const char* WordsOf(Part part) {
  switch (part) {
    case Part::kTeacher:
      return "teacher";
    case Part::kClass:
      return "class";
    case Part::kFirst:
      return "first name";
    case Part::kBeforeLast:
    case Part::kLast:
    case Part::kBehindLast:
      return "last name";
    default:
      return "name";
  }
}

RosterColumns::RosterColumns(std::vector<std::string> given) : headings(std::move(given)) {
  std::map<Part, size_t> ranks;
  for (size_t place = 0; place < headings.size(); ++place) {
    headings[place] = CellText(headings[place]);
    const auto meaning = MeaningOf(headings[place]);
    if (!meaning || (Has(meaning->part) && ranks[meaning->part] <= meaning->rank)) {
      continue;
    }
    places[meaning->part] = place;
    ranks[meaning->part] = meaning->rank;
  }
}

// By heading, by number, by letters.
size_t RosterColumns::Find(const std::string& column, const std::string& file) const {
  const std::string key = HeadingKey(column);
  for (size_t place = 0; place < headings.size(); ++place) {
    if (!key.empty() && HeadingKey(headings[place]) == key) {
      return place;
    }
  }
  for (size_t place = 0; place < headings.size(); ++place) {
    if (std::to_string(place + 1) == column || HeadingKey(LettersOf(place)) == key) {
      return place;
    }
  }
  std::vector<std::string> all;
  for (size_t place = 0; place < headings.size(); ++place) {
    all.push_back(LettersOf(place) +
                  (headings[place].empty() ? "" : ' ' + InQuotes(headings[place])));
  }
  throw HostError(kWrongUsage,
                  file + ": no column " + column + " for --columns; there are " + Listed(all));
}

void RosterColumns::Erase(std::initializer_list<Part> parts) {
  for (const Part part : parts) {
    places.erase(part);
  }
}

void RosterColumns::Tell(const std::string& told, const std::string& file) {
  std::istringstream pairs(told);
  for (std::string pair; std::getline(pairs, pair, ',');) {
    const size_t equals = std::min(pair.find('='), pair.size());
    const auto meaning = MeaningOf(pair.substr(0, equals));
    if (!meaning || equals == pair.size()) {
      throw HostError(kWrongUsage, "--columns " + pair +
                                       ": teacher=, class=, first=, last= or name= and a column");
    }
    const Part part = meaning->part == Part::kName ? Part::kFullName : meaning->part;
    const size_t place = Find(pair.substr(equals + 1), file);
    std::erase_if(places, [&](const auto& one) { return one.second == place; });
    if (part == Part::kFullName) {
      Erase({Part::kFirst, Part::kBeforeLast, Part::kLast, Part::kBehindLast, Part::kName,
             Part::kLastAndFirst});
    } else if (part == Part::kFirst || part == Part::kLast) {
      Erase({Part::kFullName, Part::kLastAndFirst});
    }
    places[part] = place;
  }
}

void RosterColumns::Settle() {
  if (Has(Part::kName) && Has(Part::kFirst) != Has(Part::kLast)) {
    places[Has(Part::kFirst) ? Part::kLast : Part::kFirst] = places[Part::kName];
    places.erase(Part::kName);
  }
  if (Has(Part::kFirst) && Has(Part::kLast)) {
    Erase({Part::kName, Part::kFullName, Part::kLastAndFirst});
    return;
  }
  if (HasNames()) {
    Erase({Part::kFirst, Part::kBeforeLast, Part::kLast, Part::kBehindLast});
  }
  if (Has(Part::kFullName)) {
    Erase({Part::kName, Part::kLastAndFirst});
  } else if (Has(Part::kLastAndFirst)) {
    Erase({Part::kName});
  }
}

bool RosterColumns::HasNames() const {
  return Has(Part::kName) || Has(Part::kFullName) || Has(Part::kLastAndFirst);
}

std::string RosterColumns::Lack(const RosterFormat& format) const {
  const bool hasStudents = HasNames() || Has(Part::kFirst) || Has(Part::kLast);
  if (places.empty()) {
    return format.noHeading ? "no column is told" : LackOfHeading(headings);
  }
  if (hasStudents && !Has(Part::kClass) && format.group.empty()) {
    return "no column is the class; --class NAME puts all into one";
  }
  return Has(Part::kLast) && !Has(Part::kFirst) ? "no column is the first name" : "";
}

void RosterColumns::Need(const RosterFormat& format, const std::string& file) const {
  if (const std::string lack = Lack(format); !lack.empty()) {
    throw HostError(kWrongUsage, file + ": " + lack + "; " + kRemedy);
  }
}

std::string RosterColumns::Text() const {
  std::map<size_t, Part> byPlace;
  for (const auto& [part, place] : places) {
    byPlace.emplace(place, part);
  }
  std::string text;
  for (const auto& [place, part] : byPlace) {
    text += (text.empty() ? "" : " ") + NameOfColumn(headings, place) + '=' + NameOf(part);
  }
  return text;
}

std::vector<std::string> RosterColumns::Ignored() const {
  std::vector<std::string> ignored;
  for (size_t place = 0; place < headings.size(); ++place) {
    const auto isThere = [&](const auto& one) { return one.second == place; };
    if (!headings[place].empty() && std::none_of(places.begin(), places.end(), isThere)) {
      ignored.push_back(InQuotes(headings[place]));
    }
  }
  return ignored;
}

}  // namespace kivadmin
