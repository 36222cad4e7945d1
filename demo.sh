#!/bin/sh
# Builds kivstore, lays out two demo stores under build/demo with kivadmin and prints their progress
# reports.
set -eu
cd "$(dirname "$0")"
. scripts/common.sh

need_build_tools
need_host_libraries
echo "building"
build_options=-DKIVSTORE_TESTS=OFF
build release kivreport kivadmin

demo=build/demo
network=$demo/network
local=$demo/local
report=build/release/bin/kivreport
admin=build/release/bin/kivadmin
rm -rf "$demo"
mkdir -p "$demo"

echo
echo "Laying out the networked store, $network:"
"$admin" init "$network" --kind teachers
"$admin" import "$network" examples/school.csv
"$admin" options set "$network" --teacher "Ms Hill" VocabLevel=2
"$admin" options set "$network" --teacher "Ms Hill" --class "Room 12" VocabLevel=3 \
  TOGameDob.CurrentMissionNumber=4
# Teacher, class, student (a name, or # and the place in the list), mission, new keys learned.
set_progress() {
  "$admin" progress "$network" --teacher "$1" --class "$2" --student "$3" --mission "$4" \
    --lessons-done "1-$(($4 - 1))" --learned-keys "$5"
}
set_progress "Ms Hill" "Room 12" "Ann Lee" 9 yes
set_progress "Ms Hill" "Room 12" "José Núñez" 6 no
set_progress "Ms Hill" "Room 14" "#2" 22 yes
set_progress "Mr Björk" "Klasse 7ä" "#1" 17 no
set_progress "Mr Björk" "Klasse 7ä" "#4" 25 yes
set_progress "Mr Björk" "Afternoon group" "Tara Lee" 12 yes
set_progress "Mrs Reyes" "Year 6" "#5" 3 yes
set_progress "Mrs Reyes" "Beginners" "#1" 2 yes

# What happens in real stores: an index that lost its lines, and a student who is there twice.
head -c 8 /dev/zero >"$network/Classes.zep/MrBjrk/Classes.zep/index.kiv"
year6=$network/Classes.zep/MrsReyes/Classes.zep/Year6/Students
cp -R "$year6/DrOBrien" "$year6/DrOBrie2"
echo
echo "Checking it after an accident:"
"$admin" check "$network" --repair

echo
echo "The networked store, $network:"
"$report" "$network"
"$report" "$network" --format html --output "$demo/report.html"
echo "The same as a page for a browser: $demo/report.html"

echo
echo "Laying out the local store, $local:"
"$admin" init "$local" --kind local
"$admin" add class "$local" "Family"
"$admin" add student "$local" "Kira" "Applebaum" --class "Family"
"$admin" add student "$local" "Ivo" --class "Family"
"$admin" progress "$local" --class "Family" --student "Ivo" --mission 5 --lessons-done 1-4 \
  --learned-keys yes
echo
echo "The local store, $local:"
"$report" "$local"

echo
echo "Try: $report --roster $network"
echo "     $admin options show $network --teacher 'Ms Hill' --class 'Room 12'"
echo "     $admin --help"
