# Templates and uploads in ./demo, on a web server of this machine. Needs $kestrelon and $out.

export no_proxy=127.0.0.1
web=$out/web
mkdir -p "$web/Templates/Seminar" "$web/Import"
cp examples/Letter.dotx "$web/Templates"
cp examples/Seminar.dotx "$web/Templates/Seminar"

coproc server { exec python3 examples/WebFolder.py "$web" 2>"$out/web.log"; }
web_server=$server_PID
trap 'kill "$web_server"' EXIT
read -r url <&"${server[0]}"

say "The templates of a folder, of one of its subfolders, and of a web folder at $url"
"$kestrelon" call GetTemplateList folderpath="$web/Templates" listtype=Business
"$kestrelon" call GetTemplateList folderpath="$web/Templates" listtype=Seminar
"$kestrelon" call GetTemplateList folderpath="$url/Templates" listtype=Seminar

say "A file sent to the web folder"
printf 'Name;Town\r\nOsei;K\xf6ln\r\n' >"$out/Import list.csv"
"$kestrelon" call UploadFile filePath="$out/Import list.csv" ImportDirectory="$url/Import"
ls -l "$web/Import"

kill "$web_server"
wait "$web_server"
trap - EXIT
