<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es">
<context>
    <name>CallTypes</name>
    <message>
        <source>Telephone</source>
        <translation>Teléfono</translation>
    </message>
    <message>
        <source>Facetime</source>
        <translation>Facetime</translation>
    </message>
    <message>
        <source>Facetime Audio</source>
        <translation>Facetime audio</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Mensaje</translation>
    </message>
    <message>
        <source>Skype</source>
        <translation>Skype</translation>
    </message>
    <message>
        <source>Slack</source>
        <translation>Slack</translation>
    </message>
    <message>
        <source>Telegtram</source>
        <translation>Telegram</translation>
    </message>
    <message>
        <source>Mail</source>
        <translation>Correo</translation>
    </message>
    <message>
        <source>Google Meet</source>
        <translation>Google Meet</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Webex</source>
        <translation>Webex</translation>
    </message>
    <message>
        <source>Jitsi</source>
        <translation>Jitsi</translation>
    </message>
</context>
<context>
    <name>CallsManager</name>
    <message>
        <source>No application on this computer opens phone calls (tel: addresses). Install KDE Connect to call through your phone, or GNOME Calls.</source>
        <translation>Ninguna aplicación de este equipo abre llamadas de teléfono (direcciones tel:). Instale KDE Connect para llamar a través de su teléfono, o GNOME Calls.</translation>
    </message>
    <message>
        <source>No application on this computer sends text messages (sms: addresses). Install KDE Connect to send them through your phone, or Chats.</source>
        <translation>Ninguna aplicación de este equipo envía mensajes de texto (direcciones sms:). Instale KDE Connect para enviarlos a través de su teléfono, o Chats.</translation>
    </message>
    <message>
        <source>No application on this computer writes e-mails (mailto: addresses). Install a mail client such as Thunderbird or Evolution, or choose one as the default for e-mail in the system settings.</source>
        <translation>Ninguna aplicación de este equipo escribe correos (direcciones mailto:). Instale un cliente de correo como Thunderbird o Evolution, o elija uno como predeterminado para el correo en la configuración del sistema.</translation>
    </message>
    <message>
        <source>No application on this computer opens FaceTime calls (facetime: addresses). FaceTime runs on Apple devices only: place a phone call or send a message instead.</source>
        <translation>Ninguna aplicación de este equipo abre llamadas de FaceTime (direcciones facetime:). FaceTime solo funciona en dispositivos de Apple: haga una llamada de teléfono o envíe un mensaje.</translation>
    </message>
    <message>
        <source>No application on this computer opens %1 addresses.</source>
        <translation>Ninguna aplicación de este equipo abre direcciones %1.</translation>
    </message>
    <message>
        <source>%1 could not be started to open the address: %2</source>
        <translation>No se pudo iniciar %1 para abrir la dirección: %2</translation>
    </message>
    <message>
        <source>Error creating call: %1</source>
        <translation>Error al crear la llamada: %1</translation>
    </message>
    <message>
        <source>Error creating Facetime call: %1</source>
        <translation>Error al crear la llamada de Facetime: %1</translation>
    </message>
    <message>
        <source>Error creating Facetime Audio call: %1</source>
        <translation>Error al crear la llamada de audio de Facetime: %1</translation>
    </message>
    <message>
        <source>Error creating eMail: %1</source>
        <translation>Error al crear el correo: %1</translation>
    </message>
    <message>
        <source>Attempt to open Telco of type: &apos;%1&apos;</source>
        <translation>Intento de abrir una comunicación de tipo: «%1»</translation>
    </message>
    <message>
        <source>Couldn&apos;t find the url for the telco, you might have accidentaly closed the browser. The call will not be registered in recents.</source>
        <translation>No se encontró la dirección de la reunión; puede que haya cerrado el navegador sin querer. La llamada no se guardará en Recientes.</translation>
    </message>
</context>
<context>
    <name>CallsManagerError</name>
    <message>
        <source>Invalid Number used for CallManager API with number: %1</source>
        <translation>Se usó un número no válido: %1</translation>
    </message>
    <message>
        <source>Telco not supported: %1</source>
        <translation>Comunicación no admitida: %1</translation>
    </message>
    <message>
        <source>Error Creating call in Workspace with number: %1</source>
        <translation>Error al crear la llamada con el número: %1</translation>
    </message>
    <message>
        <source>Error Creating telco in browser: %1</source>
        <translation>Error al abrir la comunicación en el navegador: %1</translation>
    </message>
    <message>
        <source>Error Creating eMail: %1</source>
        <translation>Error al crear el correo: %1</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>telverra: no display to show the window on (neither DISPLAY nor WAYLAND_DISPLAY is set).
The commands work without one: try &apos;telverra --help&apos;.</source>
        <translation>telverra: no hay pantalla en la que mostrar la ventana (no están definidas ni DISPLAY ni WAYLAND_DISPLAY).
Las órdenes funcionan sin ella: pruebe «telverra --help».</translation>
    </message>
    <message>
        <source>telverra: %1
Try &apos;telverra --help&apos;.</source>
        <translation>telverra: %1
Pruebe «telverra --help».</translation>
    </message>
    <message>
        <source>telverra: no action %1
Try &apos;telverra --help&apos;.</source>
        <translation>telverra: no existe la acción %1
Pruebe «telverra --help».</translation>
    </message>
    <message>
        <source>Usage: telverra [COMMAND [ARGUMENTS]] [OPTIONS]

Without a command, Telverra opens its window.

Launch commands (forwarded to a running window when there is one):
  call NUMBER               place a phone call (tel:)
  message DESTINATION       send a text message (sms:)
  mail ADDRESS              write an e-mail (mailto:)
  facetime DESTINATION      start a FaceTime video call
  facetime-audio DESTINATION  start a FaceTime audio call
  open URL                  open a Google Meet, Zoom, Webex or Jitsi meeting link
  meet                      start a new Google Meet meeting and record its address

Listings:
  recents [--search TEXT] [--json]    the history of launches, newest first
  favorites [--json]                  saved meeting links and favourite contacts
  contacts [--search TEXT] [--json]   the address book

Options:
  --contacts DIR   read the address book from this vCard folder
  --info FILE      read the deployment settings (Info.ini) from FILE
  --self-test      load every screen without showing it, then exit
  --action NAME    run a desktop action in the window: new-meet, call-from-clipboard, dialer
  -h, --help       show this help
  -v, --version    show the version

Exit status: 0 on success, 1 when a launch failed (the reason on standard error), 2 on a usage error.
</source>
        <extracomment>The whole of &quot;telverra --help&quot;. Command and option names stay as they are; keep the columns aligned.</extracomment>
        <translation>Uso: telverra [ORDEN [ARGUMENTOS]] [OPCIONES]

Sin ninguna orden, Telverra abre su ventana.

Órdenes de llamada (se pasan a la ventana abierta, si la hay):
  call NÚMERO               hace una llamada de teléfono (tel:)
  message DESTINO           envía un mensaje de texto (sms:)
  mail DIRECCIÓN            escribe un correo (mailto:)
  facetime DESTINO          inicia una videollamada de FaceTime
  facetime-audio DESTINO    inicia una llamada de audio de FaceTime
  open URL                  abre un enlace de reunión de Google Meet, Zoom, Webex o Jitsi
  meet                      inicia una reunión nueva de Google Meet y guarda su dirección

Listados:
  recents [--search TEXTO] [--json]    el historial de llamadas, de la más reciente a la más antigua
  favorites [--json]                   los enlaces de reunión guardados y los contactos favoritos
  contacts [--search TEXTO] [--json]   la libreta de direcciones

Opciones:
  --contacts CARPETA   lee la libreta de direcciones de esta carpeta de vCard
  --info ARCHIVO       lee la configuración de instalación (Info.ini) de ARCHIVO
  --self-test          carga todas las pantallas sin mostrarlas y termina
  --action NOMBRE      ejecuta una acción del escritorio en la ventana: new-meet, call-from-clipboard, dialer
  -h, --help           muestra esta ayuda
  -v, --version        muestra la versión

Estado de salida: 0 si todo fue bien, 1 si falló una llamada (el motivo va a la salida de errores), 2 si hubo un
error de uso.
</translation>
    </message>
    <message>
        <source>%1 needs a value</source>
        <translation>%1 necesita un valor</translation>
    </message>
    <message>
        <source>unknown option %1</source>
        <translation>opción desconocida %1</translation>
    </message>
    <message>
        <source>unknown command %1</source>
        <translation>orden desconocida %1</translation>
    </message>
    <message>
        <source>%1 takes one destination</source>
        <translation>%1 admite un solo destino</translation>
    </message>
    <message>
        <source>%1 takes no destination</source>
        <translation>%1 no admite ningún destino</translation>
    </message>
    <message>
        <source>--json and --search go with recents, favorites and contacts</source>
        <translation>--json y --search solo valen con recents, favorites y contacts</translation>
    </message>
    <message>
        <source>favorites takes no --search</source>
        <translation>favorites no admite --search</translation>
    </message>
    <message>
        <source>Not a number that can be called: %1</source>
        <translation>No es un número al que se pueda llamar: %1</translation>
    </message>
    <message>
        <source>Unknown command: %1</source>
        <translation>Orden desconocida: %1</translation>
    </message>
</context>
<context>
    <name>ContactLabels</name>
    <message>
        <source>mobile</source>
        <translation>móvil</translation>
    </message>
    <message>
        <source>iPhone</source>
        <translation>iPhone</translation>
    </message>
    <message>
        <source>main</source>
        <translation>principal</translation>
    </message>
    <message>
        <source>home fax</source>
        <translation>fax de casa</translation>
    </message>
    <message>
        <source>work fax</source>
        <translation>fax del trabajo</translation>
    </message>
    <message>
        <source>other fax</source>
        <translation>otro fax</translation>
    </message>
    <message>
        <source>pager</source>
        <translation>buscapersonas</translation>
    </message>
    <message>
        <source>home</source>
        <translation>casa</translation>
    </message>
    <message>
        <source>work</source>
        <translation>trabajo</translation>
    </message>
    <message>
        <source>other</source>
        <translation>otro</translation>
    </message>
</context>
<context>
    <name>ContactStoreManagerError</name>
    <message>
        <source>💥! Error fetching contacts: %1</source>
        <translation>💥! Error al leer los contactos: %1</translation>
    </message>
    <message>
        <source>💥! Error accessing container: %1. Please go to settings and allow the app to access contacts.</source>
        <translation>💥! Error al acceder a la libreta de direcciones: %1. Vaya a la configuración y permita que la aplicación acceda a los contactos.</translation>
    </message>
    <message>
        <source>💥! Error trying to find contact with specific ContactID: %1.</source>
        <translation>💥! Error al buscar el contacto con el identificador %1.</translation>
    </message>
    <message>
        <source>💥! Permission error when attempting to access contact store. Please go to settings and allow the app to access contacts.</source>
        <translation>💥! Error de permisos al acceder a los contactos. Vaya a la configuración y permita que la aplicación acceda a los contactos.</translation>
    </message>
</context>
<context>
    <name>DesktopSearch</name>
    <message>
        <source>Call</source>
        <translation>Llamar</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Mensaje</translation>
    </message>
    <message>
        <source>Mail</source>
        <translation>Correo</translation>
    </message>
    <message>
        <source>Call %1 (%2)</source>
        <extracomment>A result of the desktop&apos;s search: %1 is a contact&apos;s name, %2 a label and a number or address, &quot;mobile +34 600…&quot;</extracomment>
        <translation>Llamar a %1 (%2)</translation>
    </message>
    <message>
        <source>Message %1 (%2)</source>
        <translation>Mensaje a %1 (%2)</translation>
    </message>
    <message>
        <source>Mail %1 (%2)</source>
        <translation>Correo a %1 (%2)</translation>
    </message>
</context>
<context>
    <name>HomeWindowViewModel</name>
    <message>
        <source>Telverra can read the clipboard only while its window is in front. Bring the window to the front and try again.</source>
        <translation>Telverra solo puede leer el portapapeles mientras su ventana está en primer plano. Traiga la ventana al frente y vuelva a intentarlo.</translation>
    </message>
</context>
<context>
    <name>LaunchAtLogin</name>
    <message>
        <source>Start Telverra when you log in</source>
        <translation>Iniciar Telverra al iniciar la sesión</translation>
    </message>
</context>
<context>
    <name>QuickActionsSettingsView</name>
    <message>
        <source>Opens in %1</source>
        <translation>Se abre en %1</translation>
    </message>
    <message>
        <source>No application installed</source>
        <translation>Ninguna aplicación instalada</translation>
    </message>
    <message>
        <source>The desktop asks which application to use</source>
        <translation>El escritorio pregunta qué aplicación usar</translation>
    </message>
</context>
<context>
    <name>RecentCallItemViewModel</name>
    <message>
        <source>today</source>
        <extracomment>The day of a call in the history</extracomment>
        <translation>hoy</translation>
    </message>
    <message>
        <source>yesterday</source>
        <extracomment>The day of a call in the history</extracomment>
        <translation>ayer</translation>
    </message>
</context>
</TS>
